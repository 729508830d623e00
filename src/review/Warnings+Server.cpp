#include "review/Warnings.h"

#include "platform/foundation/Host.h"
#include "platform/samba/InstalledSamba.h"
#include "platform/samba/SettingsComplaints.h"
#include "review/TextDifference.h"

#include <algorithm>
#include <chrono>
#include <optional>

namespace review {

namespace {

/// testparm looks names up on the network, and a slow network must not keep a plan waiting.
constexpr std::chrono::seconds timeLimit{5};

/// The complaints of testparm about the text, which end with the one that keeps it from reading on; none
/// when it did not finish.
std::optional<std::vector<std::string>> faultsOf(const std::string& text) {
    std::vector<std::string> faults;
    const auto run = platform::runTestparm(text, timeLimit);
    if (!run.isOk()) {
        return std::nullopt;
    }
    for (const std::string_view line : linesOf(run->errors)) {
        const bool lacksFolder =
            line.starts_with("No path in service"); // the check of the computer finds it itself
        if (lacksFolder || platform::isSettingsComplaint(line)) {
            faults.emplace_back(line.substr(0, line.find_last_not_of('.') + 1)); // the sentence has its own
        }
    }
    return faults;
}

/// A root's own server is started with a security level of its own, so that it starts with any in the file.
bool isStartedWithoutSecurity(const std::string& text) {
    const std::vector<std::string_view> lines = linesOf(text);
    return platform::Host::current().services().computer == nullptr &&
           std::ranges::any_of(lines, &platform::isShareSecurity);
}

} // namespace

void addServerWarnings(const Situation& situation, std::vector<Remark>* warnings) {
    const Plan& plan = situation.plan;
    if (plan.smbConfBefore == plan.smbConfAfter || platform::sambaCommand("testparm").empty()) {
        return;
    }
    const auto faults = faultsOf(plan.smbConfAfter);
    if (!faults || faults->empty()) {
        return;
    }
    const auto before = faultsOf(plan.smbConfBefore);
    if (!before) {
        return; // which of them are new is unknown
    }
    for (const std::string& fault : *faults) {
        if (std::ranges::find(*before, fault) == before->end()) {
            warnings->push_back(
                remark("server-complains", "The SMB server finds fault with the new smb.conf: %@.", fault));
        } else if (fault.starts_with("Error loading services") &&
                   !isStartedWithoutSecurity(plan.smbConfAfter)) {
            warnings->push_back(
                remark("server-does-not-start",
                       "The SMB server does not start with smb.conf as it is, and one that runs takes up no "
                       "change: \"Check This Computer…\" (brindle doctor) names the line at fault."));
        }
    }
}

} // namespace review
