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

/// For a text of which testparm has said that the server does not start with it.
bool startsAllTheSame(const std::string& text) {
    const bool isOfRoot = platform::Host::current().services().computer == nullptr;
    return isOfRoot && platform::serverStartsWith(platform::withoutShareSecurity(text));
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
        } else if (fault.starts_with("Error loading services") && !startsAllTheSame(plan.smbConfAfter)) {
            warnings->push_back(remark("server-does-not-start", serverDoesNotStart));
        }
    }
}

} // namespace review
