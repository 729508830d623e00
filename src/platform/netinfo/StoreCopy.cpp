#include "platform/netinfo/StoreCopy.h"

#include "platform/netinfo/ReadConnection.h"
#include "platform/netinfo/StoreWait.h"

namespace platform {

namespace {

constexpr int allPages = -1; // at one go

int copyAll(sqlite3* from, sqlite3* to) {
    int error =
        sqlite3_exec(to, "PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF", nullptr, nullptr, nullptr);
    if (error != SQLITE_OK) {
        return error;
    }
    sqlite3_backup* backup = sqlite3_backup_init(to, "main", from, "main");
    if (backup == nullptr) {
        return sqlite3_errcode(to);
    }
    sqlite3_backup_step(backup, allPages);
    return sqlite3_backup_finish(backup);
}

} // namespace

Status copyStore(const std::string& from, const std::string& to, int waitSeconds) {
    ReadConnection source;
    source.waitSeconds = waitSeconds;
    int error = source.open(from);
    if (error == SQLITE_OK) {
        error = source.begin();
    }
    if (error == SQLITE_OK) {
        sqlite3* opened = nullptr;
        error = sqlite3_open_v2(to.c_str(), &opened,
                                SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
        const SqliteConnection target(opened);
        if (error == SQLITE_OK) {
            error = copyAll(source.database(), target.get());
        }
    }
    return error == SQLITE_OK ? Status()
                              : Status::failure("cannot read the directory", from,
                                                storeProblem(from, error, source.waitedSeconds()));
}

} // namespace platform
