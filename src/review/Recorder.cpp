#include "review/Recorder.h"

#include "directory/DirectoryRules.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/SystemPaths.h"
#include "platform/foundation/WritersTurn.h"
#include "platform/netinfo/LocalDomain.h"
#include "platform/netinfo/StoreCopy.h"
#include "platform/posix/TemporaryFolder.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace review {

namespace systempath = platform::systempath;

namespace {

constexpr mode_t modeBits = 07777;
/// The platform's reference date in seconds since 1970.
constexpr double referenceDate = 978307200;
/// Short, because the action's own run waits longer.
constexpr int waitSeconds = 5;

constexpr const char* notKept = "What this action has changed is not kept in the history: %@";

std::string loginName() {
    const passwd* entry = ::getpwuid(::getuid());
    return entry != nullptr ? entry->pw_name : std::to_string(::getuid());
}

/// Masks the arguments after the account's path of "dscl . -passwd", which are passwords.
std::vector<std::string> withoutPasswords(const std::string& tool, std::span<const std::string> arguments) {
    std::vector<std::string> shown(arguments.begin(), arguments.end());
    constexpr std::size_t first = 3;
    for (std::size_t index = first; tool == systempath::dscl && index < shown.size(); ++index) {
        shown[index] = "********";
    }
    return shown;
}

} // namespace

std::optional<FolderState> folderStateOf(const std::string& path) {
    struct stat status {};

    if (::stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    if (const auto& forecast = platform::Host::current().services().folderForecast) {
        forecast->apply(status); // on copies a folder keeps its real owner and mode
    }
    const platform::AccountNames& names = platform::Host::current().accountNames();
    return FolderState{status.st_uid, status.st_gid, status.st_mode & modeBits,
                       names.userName(status.st_uid).value_or("") + ":" +
                           names.groupName(status.st_gid).value_or("")};
}

std::optional<std::string> settingsBytes(const std::string& path) {
    auto bytes = contentsOfFile(path);
    return bytes.isOk() ? std::optional(std::move(*bytes)) : std::nullopt;
}

/// The directory before the action's first run: a copy, because nobody can read it while runs of an action
/// are pending.
class Recorder::Before {
  public:
    Before() : folder_(platform::TemporaryFolder::makeInMemory("before")) {
        if (!folder_.isOk()) {
            status_ = folder_.status();
            return;
        }
        status_ =
            platform::copyDirectory(platform::Host::current().localDomain(), directoryFile(), waitSeconds);
    }

    [[nodiscard]] const platform::Status& status() const { return status_; }

    // The following only if the status is ok.
    [[nodiscard]] std::string directoryFile() const { return folder_->path() + "/directory.db"; }

  private:
    platform::Result<platform::TemporaryFolder> folder_;
    platform::Status status_;
};

Recorder::Recorder(const platform::Services& services)
    : authority_(services.authority), pending_(services.pendingWrites), store_(services.historyFile) {}

Recorder::~Recorder() = default;

std::unique_ptr<platform::AuthorizationSession> Recorder::createSession(OSStatus* status) {
    return authority_->createSession(status);
}

OSStatus Recorder::copyRights(platform::AuthorizationSession& session, const AuthorizationRights& rights,
                              AuthorizationFlags flags) {
    return isStopped_ ? errAuthorizationCanceled : authority_->copyRights(session, rights, flags);
}

void Recorder::destroyRights(platform::AuthorizationSession& session) {
    authority_->destroyRights(session);
}

OSStatus Recorder::execute(platform::AuthorizationSession& session, const std::string& tool,
                           std::span<const std::string> arguments, std::string* output) {
    if (tool == systempath::smbstatus || tool == systempath::smbcontrol) {
        return authority_->execute(session, tool, arguments,
                                   output); // these change nothing that could be undone
    }
    // Checked here too, because some operations request the right only once.
    if (isStopped_ && !std::exchange(finishesRun_, false)) {
        return errAuthorizationCanceled;
    }
    if (!before_) {
        before_ = std::make_unique<Before>();
        if (!before_->status().isOk()) {
            lose("What this action changes is not kept in the history: %@", before_->status().text());
        }
    }
    note(tool, arguments);
    PastRun run{tool, withoutPasswords(tool, arguments), "", false};
    const OSStatus status = authority_->execute(session, tool, arguments, output);
    run.hasFailed = status != errAuthorizationSuccess;
    if (!run.hasFailed && output != nullptr) {
        run.output = *output;
        run.hasFailed = !output->empty(); // as scripts are told; see hasGoneWrong()
    }
    setsPassword_ = setsPassword_ || (tool == systempath::dscl && !run.hasFailed);
    entry_.hasFailed = entry_.hasFailed || run.hasFailed;
    entry_.runs.push_back(std::move(run));
    if (tool == systempath::cp && !arguments.empty()) {
        // At once: what somebody else writes to the file later is no part of this action.
        fileAt(arguments.back()).after = settingsBytes(arguments.back());
    }
    return status;
}

void Recorder::lose(const char* format, const std::string& why) {
    NSLog(format, why);
    loss_ = stringWithFormat(NSLocalizedString("What was changed is not in the history and cannot be taken "
                                               "back there: %@."),
                             why);
}

FileChange& Recorder::fileAt(const std::string& path) {
    const auto found = std::ranges::find(entry_.files, path, &FileChange::path);
    if (found != entry_.files.end()) {
        return *found;
    }
    const auto now = settingsBytes(path);
    entry_.files.push_back({path, now, now});
    return entry_.files.back();
}

void Recorder::note(const std::string& tool, std::span<const std::string> arguments) {
    const auto noteRecord = [&](const std::string& path) {
        if (notedRecords_.insert(path).second) {
            entry_.records.push_back({path, std::nullopt, std::nullopt});
        }
    };
    if (tool == systempath::nicl) {
        if (const auto change = directoryChange(arguments); change && recordPath(change->path)) {
            noteRecord(change->path);
            if (change->property == "name" && change->values.size() == 1) {
                noteRecord(change->path.substr(0, change->path.rfind('/') + 1) + change->values.front());
            }
        }
    } else if (tool == systempath::cp && !arguments.empty()) {
        fileAt(arguments.back());
    } else if ((tool == systempath::chown || tool == systempath::chmod) && arguments.size() == 2) {
        const std::string& path = arguments[1];
        const auto state = folderStateOf(path);
        if (state && std::ranges::find(entry_.folders, path, &FolderStep::path) == entry_.folders.end()) {
            entry_.folders.push_back({path, *state, *state});
        }
    }
}

void Recorder::settle() {
    if (pending_) {
        pending_->settle();
    }
}

void Recorder::takeBack() {
    if (pending_) {
        pending_->takeBack();
    }
}

void Recorder::endAction() {
    if (pending_) {
        pending_->endAction();
    }
    platform::Host::current().sharedInstance<platform::WritersTurn>().endAction();
    // An undo that needed no run, because everything was already as before, is recorded too.
    if (before_ ? before_->status().isOk() : entry_.undoes != 0 && !undoFailed_) {
        finish();
    }
    before_.reset();
    entry_ = {};
    notedRecords_.clear();
    setsPassword_ = false;
    undoFailed_ = false;
    completed_.reset();
    isStopped_ = false;
}

void Recorder::beginUndo(std::int64_t undone, std::string title) {
    entry_.undoes = undone;
    entry_.title = std::move(title);
    undoFailed_ = true;
}

bool Recorder::addRecords() {
    const DirectoryView then(before_->directoryFile());
    const DirectoryView now(platform::Host::current().services().localDomain);
    if (!entry_.records.empty() && !now.isReadable()) {
        return false; // all records would seem to have been deleted
    }
    for (RecordChange& record : entry_.records) {
        record.before = then.record(record.path);
        record.after = now.record(record.path);
    }
    std::erase_if(entry_.records,
                  [](const RecordChange& record) { return isSameRecord(record.before, record.after); });
    return true;
}

namespace {

/// Adds each change the other way round, in the place of one of the same thing.
template <class Change>
void addReversed(const std::vector<Change>& changes, std::vector<Change>* all) {
    for (const Change& change : changes) {
        std::erase_if(*all, [&](const Change& each) { return each.path == change.path; });
        all->push_back({change.path, change.after, change.before});
    }
}

} // namespace

void Recorder::finish() {
    if (before_) {
        if (!addRecords()) {
            lose(notKept, "the directory cannot be read");
            return;
        }
    }
    std::erase_if(entry_.files, [](const FileChange& file) { return file.before == file.after; });
    for (FolderStep& folder : entry_.folders) {
        folder.after = folderStateOf(folder.path).value_or(folder.before);
    }
    std::erase_if(entry_.folders,
                  [](const FolderStep& folder) { return folder.before.isSame(folder.after); });
    if (completed_) {
        addReversed(completed_->records, &entry_.records);
        addReversed(completed_->files, &entry_.files);
        addReversed(completed_->folders, &entry_.folders);
    }
    if (!entry_.canComeBack() && !setsPassword_ && entry_.undoes == 0) {
        return;
    }
    entry_.hasFailed = entry_.undoes == 0 ? entry_.hasFailed : undoFailed_;
    entry_.time = std::llround(platform::Host::current().clock().now() + referenceDate);
    entry_.user = loginName();
    if (entry_.undoes == 0) {
        entry_.title = titleOf(entry_);
    }
    const auto number = store_.add(entry_);
    if (!number.isOk()) {
        lose(notKept, number.status().text());
        return;
    }
    entry_.number = *number;
    added_ = std::move(entry_);
}

} // namespace review
