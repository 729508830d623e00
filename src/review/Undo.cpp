#include "review/Undo.h"

#include "directory/DirectoryRules.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/SystemPaths.h"
#include "platform/netinfo/LocalDomain.h"
#include "platform/posix/WholeFile.h"
#include "privileged/NiutilTask.h"
#include "review/Recorder.h"
#include "tools/HelperFolders.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace review {

namespace systempath = platform::systempath;

namespace {

using platform::Status;
using Properties = DirectoryView::Record;

PlannedRun niclRun(const char* operation, const std::string& path, const std::string& property = {},
                   const std::vector<std::string>& values = {}) {
    PlannedRun run{systempath::nicl, {".", operation, path}, ""};
    if (!property.empty()) {
        run.arguments.push_back(property);
        run.arguments.insert(run.arguments.end(), values.begin(), values.end());
    }
    return run;
}

const DirectoryView::Property* find(const Properties& properties, const std::string& name) {
    const auto found = std::ranges::find(properties, name, &DirectoryView::Property::name);
    return found == properties.end() ? nullptr : &*found;
}

void addRecord(const std::string& path, const Properties& properties, std::vector<PlannedRun>* runs) {
    runs->push_back(niclRun("-create", path));
    for (const DirectoryView::Property& property : properties) {
        if (property.name != "name") {
            runs->push_back(niclRun("-create", path, property.name, property.values));
        }
    }
}

/// Appends the runs that change the properties of the record at `path` from `now` to `before`, including
/// their order.
void restoreProperties(const std::string& path, Properties now, const Properties& before,
                       std::vector<PlannedRun>* runs) {
    const auto take = [&](std::size_t index) {
        runs->push_back(niclRun("-delete", path, now[index].name));
        now.erase(now.begin() + static_cast<std::ptrdiff_t>(index));
    };
    for (std::size_t i = now.size(); i > 0; --i) {
        if (find(before, now[i - 1].name) == nullptr) {
            take(i - 1);
        }
    }
    std::size_t same = 0;
    while (same < now.size() && same < before.size() && now[same].name == before[same].name) {
        ++same;
    }
    // A new property is added at the end, so properties in a different place are deleted and made again.
    while (now.size() > same && now.back().name != "name") {
        take(now.size() - 1);
    }
    for (const DirectoryView::Property& property : before) {
        const DirectoryView::Property* current = find(now, property.name);
        if (current == nullptr || current->values != property.values) {
            runs->push_back(niclRun("-create", path, property.name, property.values));
        }
    }
}

class UndoPlanner {
  public:
    UndoPlanner(const HistoryEntry& entry, const std::vector<HistoryEntry>& all)
        : all_(all), directory_(platform::Host::current().services().localDomain) {
        plan_.entry = entry;
        plan_.title = stringWithFormat(NSLocalizedString("Taken back: %@"), entry.title);
        plan_.question = stringWithFormat(NSLocalizedString("Do you want to take back “%@”?"), entry.title);
        const auto done = std::ranges::find(all, entry.undoes, &HistoryEntry::number);
        if (entry.undoes != 0 && done != all.end()) {
            plan_.title = stringWithFormat(NSLocalizedString("Done again: %@"), done->title);
            plan_.question =
                stringWithFormat(NSLocalizedString("Do you want to do “%@” again?"), done->title);
        }
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
        }
        if (!entry.records.empty() && !directory_.isReadable()) {
            refuse(NSLocalizedString(
                "The directory cannot be read now.")); // its records would seem to have been deleted
        }
        for (const RecordChange& record : entry.records) {
            planRecord(record);
        }
        for (const FileChange& file : entry.files) {
            planFile(file);
        }
        for (const FolderStep& folder : entry.folders) {
            planFolder(folder);
        }
        checkRules();
        return std::move(plan_);
    }

  private:
    void refuse(std::string why) {
        if (plan_.refusal.empty()) {
            plan_.refusal = std::move(why);
        }
    }

    /// Refuses because `what` is neither as the entry left it nor as it was before the entry.
    template <class Touches>
    void refuseChanged(const std::string& what, Touches touches) {
        std::string names;
        for (const HistoryEntry& later : all_) {
            // An entry that undoes a later one cancels out with it.
            const bool isLater = later.number > plan_.entry.number && later.undoes <= plan_.entry.number;
            if (isLater && !later.isUndone && touches(later)) {
                names +=
                    (names.empty() ? "" : ", ") + std::to_string(later.number) + " (" + later.title + ")";
            }
        }
        if (!names.empty()) {
            refuse(stringWithFormat(
                NSLocalizedString("Later changes depend on it: %@.  Take those back first, newest first."),
                names));
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
        if (!isSameRecord(now, record.after)) {
            refuseChanged(record.path, [&](const HistoryEntry& later) {
                return std::ranges::find(later.records, record.path, &RecordChange::path) !=
                       later.records.end();
            });
            return;
        }
        noteServers(record);
        const bool isUser = record.path.starts_with("/users/");
        const std::string name = record.path.substr(record.path.rfind('/') + 1);
        if (!record.before) {
            plan_.records.push_back(niclRun("-delete", record.path));
            if (isUser) {
                lose(NSLocalizedString("The password of %@ is removed with the user."), name);
            }
        } else if (!now) {
            addRecord(record.path, *record.before, &plan_.records);
            if (isUser) {
                lose(NSLocalizedString("The password of %@ cannot be restored: set a new one."), name);
            }
        } else {
            restoreProperties(record.path, *now, *record.before, &plan_.records);
        }
    }

    void noteServers(const RecordChange& record) {
        const auto publicFolder = [](const RecordChange::State& state) {
            const auto* property = state ? find(*state, "sharedDir") : nullptr;
            return property != nullptr ? property->values : std::vector<std::string>();
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
            refuseChanged(real, [&](const HistoryEntry& later) {
                return std::ranges::find(later.files, file.path, &FileChange::path) != later.files.end();
            });
            return;
        }
        plan_.files.push_back(file);
        if (!file.before) {
            lose(NSLocalizedString("There was no file %@ before: an empty one remains."), real);
        }
    }

    void planFolder(const FolderStep& folder) {
        const auto now = folderStateOf(folder.path);
        if (!now) {
            lose(NSLocalizedString("The folder %@ cannot be examined and stays as it is."), folder.path);
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
            refuseChanged(folder.path, [&](const HistoryEntry& later) {
                return std::ranges::find(later.folders, folder.path, &FolderStep::path) !=
                       later.folders.end();
            });
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
        const std::size_t colon = folder.before.accounts.find(':');
        std::string owner = folder.before.accounts.substr(0, colon);
        std::string group = folder.before.accounts.substr(colon + 1);
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

    void checkRules() {
        for (const PlannedRun& run : plan_.records) {
            const auto change = directoryChange(run.arguments);
            if (const Status status = change ? checkDirectoryChange(*change) : Status(); !status.isOk()) {
                refuse(status.text());
            }
        }
    }

    static constexpr mode_t permissionBits = 0777;

    const std::vector<HistoryEntry>& all_;
    DirectoryView directory_;
    UndoPlan plan_;
};

std::string cannotTakeBack() {
    return NSLocalizedString("cannot take it all back");
}

Status failedRun(const PlannedRun& run) {
    return Status::failure(
        cannotTakeBack(), {},
        stringWithFormat(NSLocalizedString("failed: %@"), runText(run.tool, run.arguments)));
}

Status carryOutRuns(const std::vector<PlannedRun>& runs) {
    for (const PlannedRun& run : runs) {
        if (!NiutilTask::sharedInstance().carryOut(run.tool, run.arguments)) {
            return failedRun(run);
        }
    }
    return {};
}

/// Checks the records, because a failed commit undoes even the runs that succeeded.
Status checkRecords(const HistoryEntry& entry) {
    if (entry.records.empty()) {
        return {};
    }
    const DirectoryView now(platform::Host::current().services().localDomain);
    if (!now.isReadable()) {
        return Status::failure(cannotTakeBack(), NSLocalizedString("the directory"),
                               NSLocalizedString("it cannot be read"));
    }
    for (const RecordChange& record : entry.records) {
        if (!isSameRecord(now.record(record.path), record.before)) {
            return Status::failure(cannotTakeBack(), record.path, NSLocalizedString("it is not as it was"));
        }
    }
    return {};
}

Status restoreFile(const FileChange& file) {
    const std::string temporary =
        stringByExpandingTildeInPath(file.path == systempath::smbConf ? systempath::temporarySmbConf
                                                                      : systempath::temporaryAppleFileServer);
    Status status = platform::writeWholeFile(platform::Host::current().paths().map(temporary),
                                             file.before.value_or(""), {.mode = 0600});
    if (!status.isOk()) {
        NSLog("%@", status.text());
        return status;
    }
    const PlannedRun run{systempath::cp, {temporary, file.path}, ""};
    status = carryOutRuns({run});
    const Status removed = removeFileAtPath(temporary);
    return status.isOk() ? removed : status;
}

} // namespace

UndoPlan planUndo(const HistoryEntry& entry, const std::vector<HistoryEntry>& all) {
    return UndoPlanner(entry, all).plan();
}

Status carryOut(const UndoPlan& plan) {
    const auto& pending = platform::Host::current().services().pendingWrites;
    Status status = carryOutRuns(plan.records);
    if (!status.isOk() && pending) {
        pending->takeBack();
    }
    platform::Host::settlePendingWrites();
    status = status.isOk() ? checkRecords(plan.entry) : status;
    for (const FileChange& file : plan.files) {
        status = status.isOk() ? restoreFile(file) : status;
    }
    if (status.isOk()) {
        status = carryOutRuns(plan.folders);
    }
    if (!status.isOk()) {
        return status;
    }
    if (plan.hangsUpAFP) {
        NiutilTask::sharedInstance().restartAFS();
    }
    if (plan.hangsUpSMB) {
        NiutilTask::sharedInstance().restartSMB();
    }
    return {};
}

} // namespace review
