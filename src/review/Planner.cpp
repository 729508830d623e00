#include "review/Planner.h"

#include "platform/foundation/Host.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/SystemPaths.h"
#include "platform/netinfo/LocalDomain.h"
#include "review/Blocked.h"
#include "review/Operations.h"
#include "review/SettingChanges.h"
#include "review/TextDifference.h"
#include "review/Warnings.h"

#include <utility>

namespace review {

namespace {

using platform::systempath::appleFileServer;
using platform::systempath::smbConf;

std::string bytesOf(const std::string& path) {
    return contentsOfFile(path).valueOr("");
}

void compare(const WorkingCopy& copy, Plan* plan) {
    plan->smbConfAfter = bytesOf(copy.settingsFile(smbConf));
    if (plan->smbConfBefore != plan->smbConfAfter) {
        plan->smbConfLines = lineChanges(linesOf(plan->smbConfBefore), linesOf(plan->smbConfAfter));
    }
    for (FolderChange& change : copy.folders().changes(platform::Host::current().accountNames())) {
        plan->folders.push_back(std::move(change));
    }
}

/// Whether the operation changes only the settings files, so that it needs no copy of the directory.
bool isOfSettings(const std::string& operation) {
    const WritingOperation* found = findWritingOperation(operation);
    return found != nullptr && found->isOfSettings;
}

/// Works the plan out on `copy`. Fails when the application cannot be copied.
platform::Status workOut(const platform::Interface& main, const std::shared_ptr<WorkingCopy>& copy,
                         const RehearsedAction& action, PlanDepth depth, bool needsAccounts, Plan* plan) {
    const auto& now = *static_cast<const BRController*>(main.owner());
    const auto directoryBefore = platform::Host::current().services().localDomain;
    auto accountsBefore = needsAccounts ? AccountForecast::ofComputer() : std::nullopt;
    plan->smbConfBefore = bytesOf(smbConf);
    plan->afpBefore = bytesOf(appleFileServer);
    const auto rehearsal = Rehearsal::make(main, copy, plan);
    if (!rehearsal.isOk()) {
        return rehearsal.status();
    }
    (*rehearsal)->perform([&] { action(**rehearsal); });
    copy->settle();
    compare(*copy, plan);
    plan->afpSettings = settingChanges(plan->afpBefore, bytesOf(copy->settingsFile(appleFileServer)));
    plan->blocks = blocksOf(*plan, now, DirectoryView(directoryBefore), std::move(accountsBefore));
    if (depth == PlanDepth::Warnings) {
        plan->warnings = warningsOf({*plan, now, (*rehearsal)->controller(), DirectoryView(directoryBefore),
                                     DirectoryView(copy->storeFile())});
    }
    if (!plan->blocks.empty()) {
        // What does not happen surprises nobody, but a name that is nearly another one's is so in any case.
        std::erase_if(plan->warnings, [](const Remark& warning) { return warning.code != "name-case"; });
    }
    return {};
}

Plan planOf(const platform::Interface& main, const std::string& operation, const RehearsedAction& action,
            PlanDepth depth, bool isOfSettings) {
    Plan plan;
    plan.operation = operation;
    const auto copy =
        isOfSettings ? WorkingCopy::makeWithoutDirectory() : WorkingCopy::make(&plan.lacksDirectory);
    if (!copy.isOk()) {
        plan.failure = copy.status().text();
        return plan;
    }
    plan.failure = workOut(main, *copy, action, depth, !isOfSettings, &plan).text();
    return plan;
}

} // namespace

Plan planOf(const platform::Interface& main, const std::string& operation, const RehearsedAction& action,
            PlanDepth depth) {
    return planOf(main, operation, action, depth, isOfSettings(operation));
}

Plan planOfUndo(const platform::Interface& main, const RehearsedAction& action, bool isOfSettings) {
    return planOf(main, "undo", action, PlanDepth::Blocks, isOfSettings);
}

} // namespace review
