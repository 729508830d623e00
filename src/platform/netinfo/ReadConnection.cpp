#include "platform/netinfo/ReadConnection.h"

#include "platform/foundation/Host.h"
#include "platform/netinfo/StoreSchema.h"
#include "platform/netinfo/StoreUpgrade.h"
#include "platform/netinfo/StoreWait.h"
#include "platform/posix/TemporaryFolder.h"

#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <span>
#include <thread>
#include <vector>

#include <sys/stat.h>

namespace platform {

namespace {

constexpr int allPages = -1; // in one step

double steadySeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// Copies an open store through SQLite's own descriptor. Opening and closing another one would release the
/// locks that this process holds on the file.
int copyStore(sqlite3_file* from, const std::filesystem::path& to) {
    sqlite3_int64 left = 0;
    if (const int error = from->pMethods->xFileSize(from, &left); error != SQLITE_OK) {
        return error;
    }
    std::ofstream out(to, std::ios::binary);
    std::vector<char> buffer(1 << 20);
    for (sqlite3_int64 offset = 0; left > 0;) {
        const int size = static_cast<int>(std::min<sqlite3_int64>(left, std::ssize(buffer)));
        if (const int error = from->pMethods->xRead(from, buffer.data(), size, offset); error != SQLITE_OK) {
            return error;
        }
        out.write(buffer.data(), size);
        offset += size;
        left -= size;
    }
    out.close();
    return out ? SQLITE_OK : SQLITE_FULL;
}

int copyJournal(const std::string& from, const std::filesystem::path& to) {
    std::ifstream in(from, std::ios::binary);
    if (!in) {
        return SQLITE_CANTOPEN;
    }
    std::ofstream out(to, std::ios::binary);
    out << in.rdbuf();
    out.close();
    return out ? SQLITE_OK : SQLITE_FULL;
}

/// Copies the store and its journal under a shared lock, so that no writer recovers the store meanwhile.
int copyUnderLock(sqlite3* database, const std::string& file, const std::filesystem::path& folder) {
    sqlite3_file* handle = nullptr;
    if (sqlite3_file_control(database, "main", SQLITE_FCNTL_FILE_POINTER, &handle) != SQLITE_OK ||
        handle == nullptr || handle->pMethods == nullptr) {
        return SQLITE_CANTOPEN;
    }
    if (const int error = handle->pMethods->xLock(handle, SQLITE_LOCK_SHARED); error != SQLITE_OK) {
        return error;
    }
    int error = copyJournal(file + "-journal", folder / "copy.db-journal");
    if (error == SQLITE_OK) {
        error = copyStore(handle, folder / "copy.db");
    }
    handle->pMethods->xUnlock(handle, SQLITE_LOCK_NONE);
    return error;
}

} // namespace

int ReadConnection::open(const std::string& file) {
    file_ = file;
    begun_ = false;
    isCopy_ = false;
    sqlite3* opened = nullptr;
    const int error =
        sqlite3_open_v2(file.c_str(), &opened, SQLITE_OPEN_READONLY | sqliteOwnConnection, nullptr);
    database_.reset(opened);
    return error;
}

int ReadConnection::openEmpty() {
    file_.clear();
    isCopy_ = true;
    sqlite3* opened = nullptr;
    int error = sqlite3_open_v2(":memory:", &opened, SQLITE_OPEN_READWRITE | sqliteOwnConnection, nullptr);
    database_.reset(opened);
    error = error == SQLITE_OK ? sqlite3_exec(opened, storeSchema, nullptr, nullptr, nullptr) : error;
    error = error == SQLITE_OK ? addStandingRecords(opened) : error;
    begun_ = error == SQLITE_OK;
    return error;
}

std::optional<StoreStamp> ReadConnection::stamp() const {
    // Bytes 18 to 27 of SQLite's header: 1 twice unless there is a write-ahead log, whose writers leave the
    // counter alone; four bytes that vary with the page; the counter.
    constexpr int offset = 18;
    std::array<unsigned char, 10> header{};

    struct stat status {};

    sqlite3_file* handle = nullptr;
    int hasMoved = 0; // so that the path names another file
    // The counter is read through SQLite's own descriptor, for the reason that copyStore() has. The lock of
    // the transaction keeps writers away from it.
    if (!begun_ || isCopy_ || ::stat(file_.c_str(), &status) != 0 ||
        sqlite3_file_control(database_.get(), "main", SQLITE_FCNTL_HAS_MOVED, &hasMoved) != SQLITE_OK ||
        hasMoved != 0 ||
        sqlite3_file_control(database_.get(), "main", SQLITE_FCNTL_FILE_POINTER, &handle) != SQLITE_OK ||
        handle->pMethods->xRead(handle, header.data(), static_cast<int>(header.size()), offset) !=
            SQLITE_OK ||
        header[0] != 1 || header[1] != 1) {
        return std::nullopt;
    }
    std::uint32_t changes = 0;
    for (const unsigned char byte : std::span(header).last<4>()) {
        changes = changes << 8U | byte;
    }
    constexpr std::int64_t nanoseconds = 1'000'000'000;
    return StoreStamp{status.st_dev, status.st_ino, status.st_size,
                      status.st_ctim.tv_sec * nanoseconds + status.st_ctim.tv_nsec, changes};
}

int ReadConnection::waitForWriter(void* connection, int tries) {
    auto& self = *static_cast<ReadConnection*>(connection);
    const double now = steadySeconds();
    if (tries == 0) {
        self.waitingSince_ = now;
    }
    const double waited = now - self.waitingSince_;
    self.waitedSeconds_ = static_cast<int>(waited);
    const Host* host = Host::currentIfAny();
    const auto patience = host == nullptr ? nullptr : host->services().patience;
    if ((self.waitSeconds && (waited >= *self.waitSeconds || hasWaitedInVain(self.file_))) ||
        (patience && !patience->keepWaiting(waited))) {
        return 0;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(tries < 10 ? 2 : 20));
    return 1;
}

void ReadConnection::setWaiting() {
    sqlite3_busy_handler(database_.get(), &waitForWriter, this);
}

int ReadConnection::beginHere() {
    setWaiting();
    if (sqlite3_get_autocommit(database_.get()) != 0) {
        if (const int error = sqlite3_exec(database_.get(), "BEGIN", nullptr, nullptr, nullptr);
            error != SQLITE_OK) {
            return error;
        }
    }
    SqliteStatement application(database_.get(), "PRAGMA application_id"); // the first read takes the lock
    if (!application.step()) {
        return application.error();
    }
    if (application.number(0) != storeApplicationId) {
        return SQLITE_NOTADB;
    }
    SqliteStatement version(database_.get(), "PRAGMA user_version");
    if (!version.step()) {
        return version.error();
    }
    if (version.number(0) == storeVersionOfRows) {
        return upgradeCopy();
    }
    if (version.number(0) > storeVersion) {
        return storeIsNewer;
    }
    if (version.number(0) != storeVersion) {
        return SQLITE_NOTADB;
    }
    // A report passes through the store once, so pages that are kept longer only take new memory.
    return sqlite3_exec(database_.get(), "PRAGMA cache_size = -256", nullptr, nullptr, nullptr);
}

int ReadConnection::upgradeCopy() {
    sqlite3* opened = nullptr;
    int error = sqlite3_open_v2(":memory:", &opened, SQLITE_OPEN_READWRITE | sqliteOwnConnection, nullptr);
    SqliteConnection copy(opened);
    if (error != SQLITE_OK) {
        return error;
    }
    sqlite3_backup* backup = sqlite3_backup_init(opened, "main", database_.get(), "main");
    if (backup == nullptr) {
        return sqlite3_errcode(opened);
    }
    sqlite3_backup_step(backup, allPages);
    error = sqlite3_backup_finish(backup);
    if (error == SQLITE_OK) {
        error = upgradeStore(opened);
    }
    if (error == SQLITE_OK) {
        database_ = std::move(copy);
        isCopy_ = true;
    }
    return error;
}

int ReadConnection::begin() {
    if (begun_) {
        return SQLITE_OK;
    }
    waitedSeconds_ = 0;
    const int error = beginOrCopy();
    const Host* host = Host::currentIfAny();
    if (host != nullptr && host->services().patience) {
        host->services().patience->waitHasEnded();
    }
    if ((error & 0xff) == SQLITE_BUSY) {
        rememberVainWait(file_, waitedSeconds_);
    }
    begun_ = error == SQLITE_OK;
    return error;
}

int ReadConnection::beginOrCopy() {
    int error = beginHere();
    // A read-only connection that finds a killed writer's journal fails, because it would have to write. If
    // another writer recovers the store before it is copied, there is no journal to copy any more, and the
    // store is opened again.
    for (int tries = 0; tries < 5 && (error & 0xff) == SQLITE_READONLY; ++tries) {
        error = recoverCopy();
        if (error == SQLITE_CANTOPEN) {
            const int reopened = open(file_);
            error = reopened == SQLITE_OK ? beginHere() : reopened;
        }
    }
    return error;
}

int ReadConnection::recoverCopy() {
    sqlite3_exec(database_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
    const auto folder = TemporaryFolder::make("recovery");
    if (!folder.isOk()) {
        return SQLITE_FULL;
    }
    if (const int error = copyUnderLock(database_.get(), file_, folder->path()); error != SQLITE_OK) {
        return error;
    }
    sqlite3* opened = nullptr;
    const std::string copy = folder->path() + "/copy.db";
    const int error =
        sqlite3_open_v2(copy.c_str(), &opened, SQLITE_OPEN_READWRITE | sqliteOwnConnection, nullptr);
    database_.reset(opened);
    isCopy_ = true;
    // Reading recovers the copy. After that the open descriptor is enough, so the folder may be removed.
    return error == SQLITE_OK ? beginHere() : error;
}

} // namespace platform
