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
};

/// The time, so that a test can supply it.
class Clock {
  public:
    virtual ~Clock() = default;
    /// Seconds since the platform's reference date, 1 January 2001 00:00 UTC.
    [[nodiscard]] virtual double now() const = 0;
};

/// Where the paths that the system has wired in lie on this host.
class Paths {
  public:
    virtual ~Paths() = default;
    /// The real file behind `path`: one of the mapped system files, or `path` itself. A working copy maps the
    /// temporary files in the home folder as well.
    [[nodiscard]] virtual std::string map(const std::string& path) const = 0;
    /// The user's home folder, which "~" stands for. No trailing slash.
    [[nodiscard]] virtual std::string home() const = 0;
    /// The property list that holds the user defaults.
    [[nodiscard]] virtual std::string defaultsFile() const = 0;
    /// The bundle's resource folder.
    [[nodiscard]] virtual std::string resources() const = 0;
};

/// Names of the accounts behind numeric ids: the local directory is asked first, this computer's accounts
/// second.
class AccountNames {
  public:
    virtual ~AccountNames() = default;
    [[nodiscard]] virtual std::optional<std::string> userName(uid_t uid) const = 0;
    [[nodiscard]] virtual std::optional<std::string> groupName(gid_t gid) const = 0;
};

/// Answers the shell listings of processes. A host leaves out what must not be signalled from it.
class Processes {
  public:
    virtual ~Processes() = default;
    /// As popen(3): the stream of the command's standard output, or null with errno set. Close it with
    /// `close`.
    [[nodiscard]] virtual std::FILE* open(const std::string& command, const char* mode) = 0;
    /// As pclose(3).
    virtual int close(std::FILE* stream) = 0;
};

/// What a plan has predicted of folders: owner, group and mode that they would have.
class FolderForecast {
  public:
    virtual ~FolderForecast() = default;
    /// Puts what is predicted of the folder with this status in place of what it is.
    virtual void apply(struct stat& status) const = 0;
};

/// Changes that tool runs have made and that nobody else sees yet: the runs of the directory's tools that
/// follow one another in an action are one transaction.
class PendingWrites {
  public:
    virtual ~PendingWrites() = default;
    /// Makes them lasting and visible. Nothing when there are none. A failure, which takes all of them back,
    /// is logged and beeps.
    virtual void settle() = 0;
    /// Takes them back instead.
    virtual void takeBack() = 0;
    /// The same as settling, at the end of an action; then lets go of what served its runs.
    virtual void endAction() = 0;
};

/// Stands by while something waits for another program: shows what is waited for, and lets the user give up.
class Patience {
  public:
    virtual ~Patience() = default;
    /// Called many times a second with how long it has waited so far. False: the user has given up.
    [[nodiscard]] virtual bool keepWaiting(double seconds) = 0;
    /// It waits no longer.
    virtual void waitHasEnded() = 0;
};

/// The services behind the platform's free functions. A host owns all of them; each may be shared with
/// whoever made it. `authority` and `localDomain` may be left out where nothing uses them, `pendingWrites`
/// where every change is lasting at once.
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
    std::shared_ptr<Computer> computer;             ///< none: the computer is a folder
    std::shared_ptr<Patience> patience;             ///< none: whatever is waited for is waited for to the end
    std::shared_ptr<FolderForecast> folderForecast; ///< none: folders are as they are
    /// Where what actions have changed is kept, so that it can be taken back; empty: nowhere.
    std::string historyFile;
    /// Settings files are changed line by line, so that what a person wrote by hand stays; otherwise they are
    /// written whole.
    bool keepsLayout = false;
    /// What Gestalt answers for the system version (0xMMmf), or none when it fails.
    std::optional<std::int32_t> systemVersion = 0x1040;
    /// Language names in the order of preference ("English" last); see NSBundle.
    std::vector<std::string> languages = {"English"};
};

} // namespace platform
