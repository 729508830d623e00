#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/stat.h>
#include <sys/types.h>

namespace platform {

class Authority;   // platform/security
class Computer;    // platform/foundation
class LocalDomain; // platform/netinfo
class Presenter;   // platform/appkit

/// Where the system log goes.
class Log {
  public:
    virtual ~Log() = default;
    /// Writes one entry. `text` is already formatted and may end with a line break of its own.
    virtual void write(std::string_view text) = 0;

    /// Writes why something failed that an operation reports only as an alert or a result.
    virtual void explain(std::string_view text) { write(text); }
};

/// The time, so that a test can supply it.
class Clock {
  public:
    virtual ~Clock() = default;
    /// Seconds since the platform's reference date, 1 January 2001 00:00 UTC.
    [[nodiscard]] virtual double now() const = 0;
};

/// Where the application's fixed paths lie on this host.
class Paths {
  public:
    virtual ~Paths() = default;
    /// The real path of `path`: that of a mapped system file, or else `path` itself. A working copy maps the
    /// temporary files in the home folder as well.
    [[nodiscard]] virtual std::string map(const std::string& path) const = 0;

    /// The name that the user is told for a real path: on copies, the path of the original.
    [[nodiscard]] virtual std::string shown(const std::string& file) const { return file; }

    /// The user's home folder, which "~" stands for. No trailing slash.
    [[nodiscard]] virtual std::string home() const = 0;
    /// The property list that holds the user defaults.
    [[nodiscard]] virtual std::string defaultsFile() const = 0;
    /// The bundle's resource folder.
    [[nodiscard]] virtual std::string resources() const = 0;
};

/// The names of accounts by numeric id, looked up first in the local directory, then among this computer's
/// accounts.
class AccountNames {
  public:
    virtual ~AccountNames() = default;
    [[nodiscard]] virtual std::optional<std::string> userName(uid_t uid) const = 0;
    [[nodiscard]] virtual std::optional<std::string> groupName(gid_t gid) const = 0;
};

/// Runs shell commands that list processes. A host leaves out processes that must not be signalled from it.
class Processes {
  public:
    virtual ~Processes() = default;
    /// Like popen(3): returns a stream of the command's standard output, or null with errno set. Close it
    /// with `close`.
    [[nodiscard]] virtual std::FILE* open(const std::string& command, const char* mode) = 0;
    /// Like pclose(3).
    virtual int close(std::FILE* stream) = 0;
};

/// What a plan has predicted for folders: the owner, group and mode that they would have.
class FolderForecast {
  public:
    virtual ~FolderForecast() = default;
    /// Changes `status` to what is predicted for that folder; leaves it alone when nothing is.
    virtual void apply(struct stat& status) const = 0;
};

/// Changes made by tool runs that nobody else sees yet: consecutive runs of the directory's tools within an
/// action are one transaction.
class PendingWrites {
  public:
    virtual ~PendingWrites() = default;
    /// Commits them, if there are any. A failure undoes all of them, is logged and beeps.
    virtual void settle() = 0;
    /// Undoes them instead.
    virtual void takeBack() = 0;
    /// Settles at the end of an action, then releases what served its runs.
    virtual void endAction() = 0;
};

/// Shows what the application waits for while it waits for another program, and lets the user give up.
class Patience {
  public:
    virtual ~Patience() = default;
    /// Called many times a second with the time waited so far. Returns false when the user has given up.
    [[nodiscard]] virtual bool keepWaiting(double seconds) = 0;
    /// Called when the wait is over.
    virtual void waitHasEnded() = 0;
};

/// The services that the platform's free functions use. A host owns all of them, and each may be shared with
/// its maker. `authority` and `localDomain` may be null where nothing uses them, `pendingWrites` where every
/// change is committed at once.
struct Services {
    std::shared_ptr<Log> log;
    std::shared_ptr<Clock> clock;
    std::shared_ptr<Paths> paths;
    std::shared_ptr<AccountNames> accountNames;
    std::shared_ptr<Processes> processes;
    std::shared_ptr<LocalDomain> localDomain;
    std::shared_ptr<Authority> authority;
    std::shared_ptr<PendingWrites> pendingWrites;
    std::shared_ptr<Presenter> presenter;
    std::shared_ptr<Computer> computer;             ///< null on the embedded host
    std::shared_ptr<Patience> patience;             ///< null: every wait lasts to its end
    std::shared_ptr<FolderForecast> folderForecast; ///< null: folders are read as they are
    /// The file that records what actions have changed, so that it can be undone; empty: no record is kept.
    std::string historyFile;
    /// The file whose lock is the right to change something (WritersTurn); empty: nobody else can.
    std::string writersFile;
    /// Settings files are changed line by line, so that what somebody wrote by hand is kept; otherwise they
    /// are rewritten as a whole.
    bool keepsLayout = false;
    /// What Gestalt returns as the system version (0xMMmf); none: Gestalt fails.
    std::optional<std::int32_t> systemVersion = 0x1040;
    /// Language names in the order of preference ("English" last); see NSBundle.
    std::vector<std::string> languages = {"English"};
};

} // namespace platform
