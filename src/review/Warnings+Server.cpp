#include "review/Warnings.h"

#include "platform/samba/InstalledSamba.h"
#include "platform/samba/SettingsComplaints.h"
#include "review/TextDifference.h"

#include <algorithm>
#include <chrono>

namespace review {

namespace {

/// testparm looks names up on the network, and a slow network must not keep a plan waiting.
constexpr std::chrono::seconds timeLimit{5};

/// The complaints of testparm about the text, which end with the one that keeps it from reading on.
std::vector<std::string> faultsOf(const std::string& text) {
    std::vector<std::string> faults;
    const auto run = platform::runTestparm(text, timeLimit);
    if (!run.isOk()) {
        return faults; // without testparm's result there is nothing to warn of
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

} // namespace

void addServerWarnings(const Situation& situation, std::vector<Remark>* warnings) {
    const Plan& plan = situation.plan;
    if (plan.smbConfBefore == plan.smbConfAfter || platform::sambaCommand("testparm").empty()) {
        return;
    }
    std::vector<std::string> faults = faultsOf(plan.smbConfAfter);
    if (faults.empty()) {
        return;
    }
    const std::vector<std::string> before = faultsOf(plan.smbConfBefore);
    std::erase_if(faults,
                  [&](const auto& fault) { return std::ranges::find(before, fault) != before.end(); });
    for (const std::string& fault : faults) {
        warnings->push_back(
            remark("server-complains", "The SMB server finds fault with the new smb.conf: %@.", fault));
    }
}

} // namespace review
