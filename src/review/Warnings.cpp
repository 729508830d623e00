#include "review/Warnings.h"

#include "platform/foundation/SystemPaths.h"

#include <algorithm>
#include <array>

namespace review {

namespace {

/// The codes of all warnings, in the order in which they are shown.
constexpr std::array<std::string_view, 19> codes = {
    "changed-outside",    "lines-lost",       "section-removed",       "record-removed",
    "owner-changes",      "mode-changes",     "owner-locked-out",      "no-folder",
    "relative-folder",    "system-folder",    "folder-inside-share",   "name-case",
    "overwrites-account", "id-changes",       "untouched-setting",     "guests-write",
    "many-accounts",      "server-complains", "server-reads-otherwise"};

std::ptrdiff_t placeOf(const Remark& warning) {
    return std::ranges::find(codes, warning.code) - codes.begin();
}

} // namespace

bool Situation::writesSMBConf() const {
    return std::ranges::any_of(plan.runs, [](const PlannedRun& run) {
        return run.tool == platform::systempath::cp && run.arguments.size() == 2 &&
               run.arguments[1] == platform::systempath::smbConf;
    });
}

std::vector<Remark> warningsOf(const Situation& situation) {
    std::vector<Remark> warnings;
    if (situation.plan.runs.empty()) {
        return warnings; // the action would do nothing
    }
    addFileWarnings(situation, &warnings);
    addShareWarnings(situation, &warnings);
    addFolderWarnings(situation, &warnings);
    addAccountWarnings(situation, &warnings);
    addSettingWarnings(situation, &warnings);
    addServerWarnings(situation, &warnings);
    std::ranges::stable_sort(warnings, {}, &placeOf);
    return warnings;
}

} // namespace review
