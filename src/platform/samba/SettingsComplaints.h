#pragma once

#include "platform/posix/Status.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// What the installed Samba finds wrong with a text that is to be its smb.conf.
struct SettingsComplaint {
    std::size_t line = 0; ///< from 1; 0 where it is about no single line
    std::string text;     ///< Samba's own words
};

/// Whether a line that testparm(1) has written is a complaint. All else that it says is about its work, or a
/// piece of advice that the server does not act on.
[[nodiscard]] bool isSettingsComplaint(std::string_view line);

/// All complaints of testparm about the text, in the order of its lines. Where one of them keeps the server
/// from reading on, the lines behind it are judged without it. Files that the text includes are not read.
/// Fails when testparm is not installed or does not end.
[[nodiscard]] Result<std::vector<SettingsComplaint>> settingsComplaints(std::string_view text);

} // namespace platform
