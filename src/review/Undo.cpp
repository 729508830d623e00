#include "review/Undo.h"

#include "directory/DirectoryRules.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/SystemPaths.h"
#include "platform/netinfo/LocalDomain.h"
#include "review/Recorder.h"
#include "review/UndoAccounts.h"
#include "review/UndoRuns.h"
#include "review/WithoutChange.h"
#include "tools/HelperFolders.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <iterator>
#include <set>
#include <span>
#include <utility>

#include <sys/stat.h>

namespace review {

namespace systempath = platform::systempath;

namespace {

using platform::Status;

class UndoPlanner {
  public:
    UndoPlanner(const HistoryEntry& entry, const std::vector<HistoryEntry>& all, ChangedFile changedFile)
        : all_(all), directory_(platform::Host::current().services().localDomain), accounts_(directory_) {
        plan_.entry = entry;
        plan_.changedFile = changedFile;
        for (const RecordChange& record : entry.records) {
            entryPaths_.insert(record.path);
        }
        nameIt();
    }

    UndoPlan plan() {
        const HistoryEntry& entry = plan_.entry;
        if (entry.isUndone) {
            refuse(NSLocalizedString("It has been taken back already."));
        } else if (entry.isDamaged) {
            refuse(NSLocalizedString("What it did cannot be read: this entry of the history is damaged."));
        } else if (!entry.canComeBack()) {
            refuse(NSLocalizedString("There is nothing that could be taken back: a password that was "
                                     "replaced is no longer known."));
        } else if (!entry.records.empty() && !directory_.isReadable()) {
            refuse(NSLocalizedString(
                "The directory cannot be read now.")); // its records would seem to have been deleted
        }
        planEach(entry.records, &UndoPlanner::planRecord);
        planEach(entry.files, &UndoPlanner::planFile);
        planEach(entry.folders, &UndoPlanner::planFolder);
        planEach(entry.runs, &UndoPlanner::planUnseenFolder);
        planEach(plan_.records, &UndoPlanner::checkRules);
        std::erase_if(plan_.entry.records,
                      [this](const RecordChange& record) { return keptGroups_.contains(record.path); });
        return std::move(plan_);
    }

  private:
    /// The titles name the first change of a chain of undos, which each second one does again.
    void nameIt() {
        const HistoryEntry* first = &plan_.entry;
        bool doesAgain = false;
        for (auto done = all_.begin(); first->undoes != 0; first = &*done, doesAgain = !doesAgain) {
            done = std::ranges::find(all_, first->undoes, &HistoryEntry::number);
            if (done == all_.end() || done->number >= first->number) {
                break;
            }
        }
        plan_.title = stringWithFormat(NSLocalizedString(doesAgain ? "Done again: %@" : "Taken back: %@"),
                                       first->title);
        plan_.question = stringWithFormat(
            NSLocalizedString(doesAgain ? "Do you want to do “%@” again?" : "Do you want to take back “%@”?"),
            first->title);
    }

    void refuse(std::string why) { plan_.refusal = std::move(why); }

    /// Plans the things one after another, until the undo is refused.
    template <class Thing>
    void planEach(const std::vector<Thing>& things, void (UndoPlanner::*planOne)(const Thing&)) {
        for (const Thing& thing : things) {
            if (!plan_.refusal.empty()) {
                return;
            }
            (this->*planOne)(thing);
        }
    }

    /// Names the later changes, not taken back, that have touched something; empty when there is none.
    template <class Touches>
    [[nodiscard]] std::string laterChanges(Touches touches) const {
        std::string names;
        for (const HistoryEntry& later : all_) {
            // An entry that undoes a later one cancels out with it.
            const bool isLater = later.number > plan_.entry.number && later.undoes <= plan_.entry.number;
            if (isLater && !later.isUndone && touches(later)) {
                names +=
                    (names.empty() ? "" : ", ") + std::to_string(later.number) + " (" + later.title + ")";
            }
        }
        return names;
    }

    /// The same for those that have changed the record at `path` from a state without to one with it,
    /// whatever `has` looks for.
    template <class Has>
    [[nodiscard]] std::string laterChanges(const std::string& path, Has has) const {
        return laterChanges([&](const HistoryEntry& later) {
            const auto record = std::ranges::find(later.records, path, &RecordChange::path);
            return record != later.records.end() && !has(record->before) && has(record->after);
        });
    }

    void refuseForLater(const std::string& names) {
        refuse(stringWithFormat(
            NSLocalizedString("Later changes depend on it: %@.  Take those back first, newest first."),
            names));
    }

    /// Refuses because `what` is neither as the entry left it nor as it was before the entry.
    /// `names` are the later changes that have touched it.
    void refuseChanged(const std::string& what, const std::string& names) {
        if (!names.empty()) {
            refuseForLater(names);
            return;
        }
        refuse(stringWithFormat(
            NSLocalizedString("%@ has been changed since, and taking this back would undo that, too."),
            what));
    }

    void planRecord(const RecordChange& record) {
        const RecordChange::State now = directory_.record(record.path);
        if (isSameRecord(now, record.before)) {
            return;
        }
        if (now && accounts_.losesMembers(record)) {
            keepGroup(record, *now);
            return;
        }
        if (!isSameRecord(now, record.after)) {
            refuseChanged(record.path, laterChanges([&](const HistoryEntry& later) {
                              return std::ranges::find(later.records, record.path, &RecordChange::path) !=
                                     later.records.end();
                          }));
            return;
        }
        noteServers(record);
        checkNumber(record);
        const std::string name = nameOf(record.path);
        if (record.path.starts_with("/users/") && !record.before) {
            checkGroups(name);
            lose(NSLocalizedString("The password of %@ is removed with the user."), name);
        } else if (record.path.starts_with("/users/") && !now) {
            lose(NSLocalizedString("The password of %@ cannot be restored: set a new one."), name);
        }
        std::ranges::move(recordRuns(record.path, now, record.before), std::back_inserter(plan_.records));
    }

    static std::string nameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

    /// The system's own groups stay as they are.
    void keepGroup(const RecordChange& record, const DirectoryView::Record& now) {
        keptGroups_.insert(record.path);
        const auto members = valuesOf(now, "users");
        for (const std::string& member : valuesOf(*record.before, "users")) {
            if (std::ranges::find(members, member) == members.end()) {
                lose(NSLocalizedString(
                         "%@ is not put back into the group %@, which only the system's own tools change."),
                     member, nameOf(record.path));
            }
        }
    }

    /// Refuses to give an account a number back that another one has been given since. Accounts that may have
    /// shared it all the time may go on.
    void checkNumber(const RecordChange& record) {
        const std::string number = UndoAccounts::numberOf(record.path, record.before);
        if (number.empty() || number == UndoAccounts::numberOf(record.path, record.after)) {
            return;
        }
        for (const std::string& other : accounts_.withNumber(record.path, number)) {
            if (entryPaths_.contains(other)) {
                continue;
            }
            const auto has = [&](const RecordChange::State& state) {
                return UndoAccounts::numberOf(other, state) == number;
            };
            if (laterChanges(other, has).empty()) {
                lose(NSLocalizedString("%@ gets the number %@ back, which %@ has, too."), nameOf(record.path),
                     number, nameOf(other));
                continue;
            }
            refuse(stringWithFormat(NSLocalizedString("%@ cannot get the number %@ back: %@ has it now."),
                                    nameOf(record.path), number, nameOf(other)));
            return;
        }
    }

    /// Refuses to remove a user who has been added to a group since.
    void checkGroups(const std::string& user) {
        for (const std::string& group : accounts_.groupsOf(user)) {
            const auto has = [&](const RecordChange::State& state) {
                return state && std::ranges::count(valuesOf(*state, "users"), user) > 0;
            };
            const std::string names = entryPaths_.contains(group) ? "" : laterChanges(group, has);
            if (!names.empty()) {
                refuseForLater(names);
                return;
            }
        }
    }

    void noteServers(const RecordChange& record) {
        const auto publicFolder = [](const RecordChange::State& state) {
            const auto values = state ? valuesOf(*state, "sharedDir") : std::span<const std::string>();
            return std::vector(values.begin(), values.end());
        };
        const bool isShare = record.path.starts_with("/config/Brindle/");
        plan_.hangsUpSMB = plan_.hangsUpSMB || isShare;
        plan_.hangsUpAFP =
            plan_.hangsUpAFP || isShare || publicFolder(record.before) != publicFolder(record.after);
    }

    template <class... Arguments>
    void lose(const std::string& format, const Arguments&... arguments) {
        plan_.losses.push_back(stringWithFormat(format, arguments...));
    }

    void planFile(const FileChange& file) {
        const auto now = settingsBytes(file.path);
        const platform::Paths& paths = platform::Host::current().paths();
        const std::string real = paths.shown(paths.map(file.path));
        const bool isSMB = file.path == systempath::smbConf;
        plan_.hangsUpSMB = plan_.hangsUpSMB || isSMB;
        plan_.hangsUpAFP = plan_.hangsUpAFP || !isSMB;
        if (now == file.before || (!file.before && now == "")) {
            return;
        }
        if (now != file.after) {
            const bool isMerged = isSMB && plan_.changedFile == ChangedFile::KeepsOtherSections;
            const auto kept = isMerged && now && file.after
                                  ? withoutChange(*now, file.before.value_or(""), *file.after)
                                  : std::nullopt;
            if (!kept) {
                refuseChangedFile(file, real, isMerged);
            } else if (kept != now) {
                plan_.files.push_back({file.path, kept, now});
            }
            return;
        }
        plan_.files.push_back(file);
        if (!file.before) {
            lose(NSLocalizedString("There was no file %@ before: an empty one remains."), real);
        }
    }

    /// Names the later changes that stand in the way: those of the same sections, or else all of the file.
    void refuseChangedFile(const FileChange& file, const std::string& real, bool isMerged) {
        const auto touched = isMerged ? touchedSections(file) : std::set<std::string>();
        const auto writes = [&](const HistoryEntry& later) {
            return std::ranges::find(later.files, file.path, &FileChange::path) != later.files.end();
        };
        const auto touches = [&](const HistoryEntry& later) {
            const auto found = std::ranges::find(later.files, file.path, &FileChange::path);
            return found != later.files.end() &&
                   std::ranges::any_of(touchedSections(*found),
                                       [&](const std::string& name) { return touched.contains(name); });
        };
        const std::string names = touched.empty() ? std::string() : laterChanges(touches);
        refuseChanged(real, names.empty() ? laterChanges(writes) : names);
    }

    void planFolder(const FolderStep& folder) {
        const auto now = folderStateOf(folder.path);
        if (!now) {
            loseFolder(folder.path);
            return;
        }
        if (now->isSame(folder.before)) {
            return;
        }
        if (platform::Host::current().services().computer != nullptr &&
            !tools::checkNotReplaceable(folder.path).isOk()) {
            lose(NSLocalizedString("Anybody could replace the folder %@, so it stays as it is."),
                 folder.path);
            return;
        }
        // Each of the three may have been restored already.
        const auto is = [](auto value, auto one, auto other) { return value == one || value == other; };
        if (!is(now->owner, folder.before.owner, folder.after.owner) ||
            !is(now->group, folder.before.group, folder.after.group) ||
            !is(now->mode, folder.before.mode, folder.after.mode)) {
            refuseChanged(folder.path, laterChanges([&](const HistoryEntry& later) {
                              return std::ranges::find(later.folders, folder.path, &FolderStep::path) !=
                                     later.folders.end();
                          }));
            return;
        }
        if (now->owner != folder.before.owner || now->group != folder.before.group) {
            planOwner(folder, *now);
        }
        // Changing the owner may clear bits of the mode, but none of those that chmod sets.
        if ((now->mode & permissionBits) != (folder.before.mode & permissionBits)) {
            std::array<char, 8> mode{};
            std::snprintf(mode.data(), mode.size(), "%o", folder.before.mode & permissionBits);
            plan_.folders.push_back({systempath::chmod, {mode.data(), folder.path}, ""});
        }
    }

    void planOwner(const FolderStep& folder, const FolderState& now) {
        // By number: the account that had the name may have been replaced by another one.
        std::string owner = accounts_.ownerName(folder.before.owner);
        std::string group = accounts_.groupName(folder.before.group);
        const bool isMissing = (owner.empty() && now.owner != folder.before.owner) ||
                               (group.empty() && now.group != folder.before.group);
        if (isMissing) {
            lose(NSLocalizedString(
                     "The former owner or group of %@ is not an account: the folder keeps the present one."),
                 folder.path);
        }
        owner = now.owner == folder.before.owner ? "" : owner;
        group = now.group == folder.before.group ? "" : group;
        if (!owner.empty() || !group.empty()) {
            plan_.folders.push_back({systempath::chown, {owner + ":" + group, folder.path}, ""});
        }
    }

    /// Below a folder that the user may not search, nothing is known of what a run has changed.
    void planUnseenFolder(const PastRun& run) {
        const bool isOfFolder = run.tool == systempath::chown || run.tool == systempath::chmod;
        if (!isOfFolder || run.hasFailed || run.arguments.size() != 2) {
            return;
        }
        const std::string& path = run.arguments[1];
        const bool isKnown =
            std::ranges::find(plan_.entry.folders, path, &FolderStep::path) != plan_.entry.folders.end();

        struct stat status {};

        if (!isKnown && ::stat(path.c_str(), &status) != 0 && errno == EACCES) {
            loseFolder(path);
        }
    }

    void loseFolder(const std::string& path) {
        std::string sentence =
            stringWithFormat(NSLocalizedString("The folder %@ cannot be examined and stays as it is."), path);
        if (std::ranges::find(plan_.losses, sentence) == plan_.losses.end()) {
            plan_.losses.push_back(std::move(sentence));
        }
    }

    void checkRules(const PlannedRun& run) {
        const auto change = directoryChange(run.arguments);
        if (const Status status = change ? checkDirectoryChange(*change) : Status(); !status.isOk()) {
            refuse(status.text());
        }
    }

    static constexpr mode_t permissionBits = 0777;

    const std::vector<HistoryEntry>& all_;
    DirectoryView directory_;
    UndoAccounts accounts_;
    std::set<std::string> entryPaths_; ///< of its records
    std::set<std::string> keptGroups_; ///< paths
    UndoPlan plan_;
};

} // namespace

UndoPlan planUndo(const HistoryEntry& entry, const std::vector<HistoryEntry>& all, ChangedFile changedFile) {
    return UndoPlanner(entry, all, changedFile).plan();
}

} // namespace review
