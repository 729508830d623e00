#include "review/Warnings.h"

#include "platform/foundation/SystemPaths.h"

#include <algorithm>
#include <array>

namespace review {

namespace {

/// The codes of all warnings, in the order in which they are shown.
constexpr auto codes = std::to_array<std::string_view>({
    "home-unwritable",     "changed-outside",
    "lines-lost",          "section-removed",
    "record-removed",      "section-keeps-folder",
    "owner-changes",       "mode-changes",
    "owner-locked-out",    "no-folder",
    "relative-folder",     "unreachable",
    "system-folder",       "folder-inside-share",
    "folder-shared-twice", "name-case",
    "overwrites-account",  "member-already",
    "keeps-rights",        "login-deleted",
    "access-list",         "id-changes",
    "untouched-setting",   "guests-write",
    "read-only-section",   "user-in-use",
    "many-accounts",       "server-does-not-start",
    "server-complains",    "server-reads-otherwise",
});

/// Those that the script language does not have.
constexpr auto forPersonsOnly = std::to_array<std::string_view>({
    "section-keeps-folder",
    "folder-shared-twice",
    "read-only-section",
    "unreachable",
    "user-in-use",
    "member-already",
    "keeps-rights",
    "login-deleted",
    "access-list",
    "home-unwritable",
    "server-does-not-start",
});

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

std::string listOf(const std::vector<std::string>& things) {
    constexpr std::size_t named = 6;
    std::string list;
    for (std::size_t index = 0; index < things.size() && index < named; ++index) {
        list += (index == 0 ? "" : ", ") + things[index];
    }
    return things.size() <= named
               ? list
               : list + stringWithFormat(NSLocalizedString(", and %d more"), things.size() - named);
}

bool isForPersonsOnly(const Remark& warning) {
    return std::ranges::find(forPersonsOnly, warning.code) != forPersonsOnly.end();
}

std::vector<Remark> warningsOf(const Situation& situation) {
    std::vector<Remark> warnings;
    addFileWarnings(situation, &warnings);
    if (situation.plan.runs.empty()) {
        return warnings; // the action would do nothing
    }
    addShareWarnings(situation, &warnings);
    addFolderWarnings(situation, &warnings);
    addAccountWarnings(situation, &warnings);
    addSettingWarnings(situation, &warnings);
    addServerWarnings(situation, &warnings);
    std::ranges::stable_sort(warnings, {}, &placeOf);
    return warnings;
}

} // namespace review
