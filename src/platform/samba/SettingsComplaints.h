#pragma once

#include "platform/posix/Process.h"
#include "platform/posix/Status.h"

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// Something that the installed Samba finds wrong with the text of an smb.conf.
struct SettingsComplaint {
    std::size_t line = 0; ///< from 1; 0 when it is not about a single line
    std::string text;     ///< Samba's own words, or ours in English where it has none
    [[nodiscard]] bool operator==(const SettingsComplaint&) const = default;
};

/// Whether a line of testparm(1)'s output is a complaint. Its other lines are progress reports, or advice
/// without consequences for the server.
[[nodiscard]] bool isSettingsComplaint(std::string_view line);

/// Whether a complaint is about something that the server cannot use. Other complaints, such as one of a
/// global setting in a share's section, which the server passes over, are no reason to refuse the text.
[[nodiscard]] bool isAboutUnusableSettings(std::string_view complaint);

/// Whether a line of smb.conf says "security = share". Brindle offers that setting although today's Samba
/// refuses it; the SMB page says so.
[[nodiscard]] bool isShareSecurity(std::string_view line);
/// The text without such lines. A root's own server is started with a security level of its own, so that it
/// starts with any in the file.
[[nodiscard]] std::string withoutShareSecurity(std::string_view text);

/// The name of the setting in a line of smb.conf, in lower case and without blanks, the way Samba compares
/// names; empty when the line sets nothing.
[[nodiscard]] std::string settingKeyOf(std::string_view line);

/// Runs testparm once. It reads the text up to the first line that keeps the server from reading on, with the
/// files that it includes, and writes its complaints to its errors. Fails when it is not installed or does
/// not end within `timeLimit`.
[[nodiscard]] Result<FinishedProcess> runTestparm(std::string_view text, std::chrono::seconds timeLimit);

/// Whether the server starts with the text as its smb.conf. Runs testparm for up to five seconds; true if it
/// gives no answer.
[[nodiscard]] bool serverStartsWith(std::string_view text);

/// All complaints of testparm about the text, in the order of its lines. When a line keeps the server from
/// reading on, the lines after it are checked without it. Included files are not read. Fails when testparm is
/// not installed or does not end in time.
[[nodiscard]] Result<std::vector<SettingsComplaint>> settingsComplaints(std::string_view text);

} // namespace platform
