#include "platform/netinfo/StoreWait.h"

#include "platform/foundation/Host.h"
#include "platform/foundation/NSLog.h"
#include "platform/netinfo/StoreSchema.h"
#include "platform/posix/ProcessTable.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>
#include <utility>

#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace platform {

namespace {

/// SQLite locks bytes from this offset on (https://www.sqlite.org/fileformat.html).
constexpr unsigned long long firstLockByte = 0x40000000;
constexpr unsigned long long lockBytes = 512;

/// The store that was last waited for in vain, and the action in which that happened.
struct VainWait {
    std::string file;
    std::uint64_t action = 0;
};

struct DirectoryProblem {
    std::string text;
};

/// A lock as /proc/locks lists it; see proc_locks(5).
struct FileLock {
    bool isWriting = false;
    bool isWaitedFor = true; ///< false: it is itself waiting for a lock
    pid_t holder = 0;
    unsigned long long inode = 0;
    unsigned long long firstByte = 0;
};

/// "1: POSIX  ADVISORY  WRITE 708 08:02:131 1073741824 1073742335"
FileLock parsedLock(const std::string& line) {
    std::istringstream words(line);
    std::string number;
    std::string kind;
    std::string manner;
    std::string access;
    std::string place;
    FileLock lock;
    words >> number >> kind;
    lock.isWaitedFor = kind != "->";
    if (!lock.isWaitedFor) {
        words >> kind;
    }
    words >> manner >> access >> lock.holder >> place >> lock.firstByte;
    lock.isWriting = access == "WRITE";
    std::istringstream(place.substr(place.rfind(':') + 1)) >> lock.inode;
    return lock;
}

/// Whether the process is this one or was started by it, perhaps through sudo.
bool isOwn(pid_t process) {
    while (process > 1 && process != ::getpid()) {
        process = parentOf(process);
    }
    return process == ::getpid();
}

/// Whether the disk of `file` takes more files, however much room there is for bytes.
bool hasRoomForFiles(const std::string& file) {
    struct statvfs disk {};

    // Some file systems have no limit and report neither number.
    return ::statvfs(file.c_str(), &disk) != 0 || disk.f_files == 0 || disk.f_favail > 0;
}

} // namespace

std::string storeHolder(const std::string& file) {
    struct stat status {};

    if (::stat(file.c_str(), &status) != 0) {
        return {};
    }
    std::ifstream locks("/proc/locks");
    std::string holder;
    std::string line;
    while (std::getline(locks, line)) {
        const FileLock lock = parsedLock(line);
        const bool isStoreLock = lock.inode == status.st_ino && lock.firstByte >= firstLockByte &&
                                 lock.firstByte < firstLockByte + lockBytes;
        if (!isStoreLock || !lock.isWaitedFor || isOwn(lock.holder) || (!holder.empty() && !lock.isWriting)) {
            continue;
        }
        if (const std::string program = programNameOf(lock.holder); !program.empty()) {
            holder = program + " (process " + std::to_string(lock.holder) + ")";
        }
    }
    return holder;
}

std::string shownStore(const std::string& file) {
    const Host* host = Host::currentIfAny();
    return host != nullptr && host->services().paths ? host->paths().shown(file) : file;
}

std::string storeProblem(const std::string& file, int error, int waited) {
    std::error_code ignored;
    switch (error & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED: {
        const std::string known = storeHolder(file);
        const std::string holder = known.empty() ? "another program" : known;
        return (waited > 0 ? holder + " has been using it for " + std::to_string(waited) +
                                 (waited == 1 ? " second" : " seconds")
                           : holder + " is using it") +
               "; try again when it has ended";
    }
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
        return "it is damaged, or not a directory; restore it from a copy, or move it away to have a new one "
               "made";
    case storeIsNewer:
        return newerStoreText;
    case SQLITE_FULL:
        return "the disk is full; make room and try again";
    case SQLITE_READONLY:
    case SQLITE_PERM:
        return "it may only be read; allow writing to it and its folder";
    case SQLITE_CANTOPEN:
        if (!hasRoomForFiles(file)) { // a change needs a journal beside the store
            return "its disk has no room for another file; remove files that are not needed, and try again";
        }
        return std::filesystem::exists(file, ignored)
                   ? "it cannot be opened; check who may read and write it and its folder"
                   : "it does not exist; start brindle once to have it made";
    default:
        return std::string(sqlite3_errstr(error)) + "; check the disk that holds it";
    }
}

std::string storeOpeningProblem(const std::string& file) {
    return storeProblem(file, SQLITE_CANTOPEN, 0);
}

bool hasWaitedInVain(const std::string& file) {
    Host* host = Host::currentIfAny();
    if (host == nullptr) {
        return false;
    }
    const VainWait& failed = host->sharedInstance<VainWait>();
    return failed.file == file && failed.action == host->endedActions();
}

void rememberVainWait(const std::string& file, int waited) {
    Host* host = Host::currentIfAny();
    if (host == nullptr || hasWaitedInVain(file)) {
        return;
    }
    host->sharedInstance<VainWait>() = {file, host->endedActions()};
    NSLog("The directory %@ cannot be used: %@.", shownStore(file), storeProblem(file, SQLITE_BUSY, waited));
}

const std::string& directoryProblem() {
    return Host::current().sharedInstance<DirectoryProblem>().text;
}

void setDirectoryProblem(std::string problem) {
    if (Host* host = Host::currentIfAny()) {
        host->sharedInstance<DirectoryProblem>().text = std::move(problem);
    }
}

} // namespace platform
