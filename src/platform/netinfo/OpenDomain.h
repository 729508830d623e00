#pragma once

#include "platform/netinfo/LocalDomain.h"
#include "platform/netinfo/ReadConnection.h"
#include "platform/netinfo/RecordBlock.h"
#include "platform/netinfo/Sqlite.h"
#include "platform/netinfo/ni.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

// An open connection to the directory, and how it finds records: in the store, a run of them at a time, or
// among the lines of passwd and group. What ni.h offers stands on it; nobody else includes this.

namespace platform {

using SharedBlock = std::shared_ptr<const platform::RecordBlock>;

/// The records of a directory that are the lines of a file.
struct RecordLines {
    SharedBlock block;
    std::unordered_map<std::string_view, std::int64_t> byName; ///< the first of each name
};

} // namespace platform

struct ni_domain {
    platform::ReadConnection connection;
    bool aborts = false;
    int readTimeout = 30;
    /// The records that were read last. Whoever was handed texts of others keeps those alive.
    platform::SharedBlock block;
    // Children are mostly asked for in their order: the record that is expected next, and whose child it is.
    std::int64_t expected = -1;
    std::int64_t expectedParent = 0;
    std::optional<platform::AccountFiles> accounts;
    // The ids of /users and /groups, where their records are the lines of files; else 0.
    std::int64_t usersDirectory = 0;
    std::int64_t groupsDirectory = 0;
    // Their records, once they have been read.
    std::optional<platform::RecordLines> users;
    std::optional<platform::RecordLines> groups;
    std::string file;
    // Prepared once: a report of many records would spend most of its time on it. Gone before the connection.
    std::optional<platform::SqliteStatement> oneRecord;
    std::optional<platform::SqliteStatement> nextRecords;
    std::optional<platform::SqliteStatement> childNamed;

    void applyTimeout();
    [[nodiscard]] int begin();

    /// `statement`, ready for new values.
    [[nodiscard]] platform::SqliteStatement& prepared(std::optional<platform::SqliteStatement>& statement,
                                                      std::string_view sql) {
        if (!statement || statement->error() != SQLITE_OK) {
            statement.emplace(connection.database(), sql);
        }
        statement->reset();
        return *statement;
    }
};

namespace platform {

[[nodiscard]] ni_status statusOf(int sqliteError);

struct FoundRecord {
    const SharedBlock* block = nullptr; ///< of the domain's own
    const platform::RecordBlock::Record* record = nullptr;
};

/// Begins to read, and finds the directories whose records are lines of files. Returns SQLite's error.
[[nodiscard]] int beginReading(ni_domain& domain);

/// The records of a directory that are lines of a file, read when they are first asked for; null when the
/// directory is none of those, or with `*error` (SQLite's) set.
[[nodiscard]] const RecordLines* linesOf(ni_domain& domain, std::int64_t directory, int* error);

/// The record of that id. NI_BADID when there is none, NI_SYSTEMERR when it is damaged.
[[nodiscard]] ni_status findRecord(ni_domain& domain, std::uint32_t id, FoundRecord* found);

/// False with `*error` (SQLite's) set when that cannot be told.
[[nodiscard]] bool recordExists(ni_domain& domain, std::uint32_t id, int* error);

/// Appends the ids of the records below `parent` that are in the store. NI_BADID when it is none.
[[nodiscard]] ni_status addStoredChildren(ni_domain& domain, std::uint32_t parent, ni_idlist* children);

} // namespace platform
