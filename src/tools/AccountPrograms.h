#pragma once

#include "platform/posix/Status.h"

#include <string>
#include <string_view>
#include <vector>

namespace tools {

// The computer's own programs that change its accounts (shadow-utils). They know the account files, lock
// them, and notify other services.

/// Runs such a program directly, not through a shell. `words` are its path and its arguments, `input` its
/// standard input. Fails with the program's error message.
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

} // namespace tools
