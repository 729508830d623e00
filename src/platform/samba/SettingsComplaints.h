#pragma once

#include "platform/posix/Status.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// Something that the installed Samba finds wrong with the text of an smb.conf.
struct SettingsComplaint {
    std::size_t line = 0; ///< from 1; 0 when it is not about a single line
    std::string text;     ///< Samba's own words, or ours in English where it has none
};

/// Whether a line of testparm(1)'s output is a complaint. Its other lines are progress reports, or advice
/// without consequences for the server.
[[nodiscard]] bool isSettingsComplaint(std::string_view line);

/// All complaints of testparm about the text, in the order of its lines. When a line keeps the server from
/// reading on, the lines after it are checked without it. Included files are not read. Fails when testparm is
/// not installed or does not end in time.
[[nodiscard]] Result<std::vector<SettingsComplaint>> settingsComplaints(std::string_view text);

} // namespace platform
