#pragma once

#include "platform/posix/Status.h"

#include <string>
#include <string_view>
#include <vector>

// The computer's own programs that change its accounts (shadow-utils), which know the files of accounts, lock
// them, and tell whoever else has to know.

/// Runs such a program: its path, then its arguments, as they are and never through a shell. `input` is its
/// standard input. Fails with what the program complained of.
[[nodiscard]] platform::Status runAccountProgram(const std::vector<std::string>& words,
                                                 std::string_view input = {});

namespace accountprogram {

inline constexpr const char* useradd = "/usr/sbin/useradd";
inline constexpr const char* usermod = "/usr/sbin/usermod";
inline constexpr const char* userdel = "/usr/sbin/userdel";
inline constexpr const char* groupadd = "/usr/sbin/groupadd";
inline constexpr const char* groupmod = "/usr/sbin/groupmod";
inline constexpr const char* groupdel = "/usr/sbin/groupdel";
inline constexpr const char* gpasswd = "/usr/bin/gpasswd";
inline constexpr const char* chpasswd = "/usr/sbin/chpasswd";

} // namespace accountprogram
