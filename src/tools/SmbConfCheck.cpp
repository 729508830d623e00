#include "tools/SmbConfCheck.h"

#include "platform/foundation/NSLog.h"
#include "platform/posix/Process.h"
#include "platform/samba/InstalledSamba.h"
#include "platform/samba/SettingsComplaints.h"

#include <algorithm>
#include <chrono>

namespace tools {

using platform::Status;

namespace {

constexpr auto limit = std::chrono::seconds(20);

std::string firstComplaint(std::string_view said) {
    while (!said.empty()) {
        const std::string_view line = said.substr(0, said.find('\n'));
        if (platform::isAboutUnusableSettings(line)) {
            return std::string(line);
        }
        said.remove_prefix(std::min(said.size(), line.size() + 1));
    }
    return {};
}

/// Why the server could not use the text; empty if it could. Fails when testparm did not finish.
platform::Result<std::string> complaintAbout(std::string_view text) {
    const auto finished = platform::runTestparm(platform::withoutShareSecurity(text), limit);
    if (!finished.isOk()) {
        NSLog("smb.conf could not be checked: %@", finished.status().text());
        return finished.status();
    }
    // Its exit status does not reflect unknown keys.
    std::string complaint = firstComplaint(finished->errors);
    if (complaint.empty() && finished->status != 0) {
        complaint = platform::lastLineOf(finished->errors);
        complaint = complaint.empty() ? "it has failed and does not say why" : complaint;
    }
    return complaint;
}

} // namespace

std::optional<std::string> complaintAboutSmbConf(std::string_view text) {
    if (platform::sambaCommand("testparm").empty()) {
        return std::nullopt;
    }
    auto complaint = complaintAbout(text);
    return !complaint.isOk() || complaint->empty() ? std::nullopt : std::optional(std::move(*complaint));
}

Status checkSmbConf(std::string_view text, std::string_view old) {
    const auto complaint = complaintAboutSmbConf(text);
    if (!complaint) {
        return {};
    }
    // Without a result for the old text nobody knows that the server could use that one.
    if (const auto before = complaintAbout(old); !before.isOk() || !before->empty()) {
        return {};
    }
    return Status::failure("cannot save", "smb.conf",
                           "the server could not use it (testparm: " + *complaint + "); nothing was changed");
}

} // namespace tools
