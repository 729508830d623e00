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

// An open connection to the directory, and how it finds records: in the store, where it reads several at a
// time, or among the lines of passwd and group. Only the implementation of ni.h includes this header.

namespace platform {

using SharedBlock = std::shared_ptr<const platform::RecordBlock>;

/// The records of a directory that are lines of a file.
struct RecordLines {
    SharedBlock block;
    std::unordered_map<std::string_view, std::int64_t> byName; ///< ids of records; the first of each name
};

} // namespace platform

struct ni_domain {
    platform::ReadConnection connection;
    bool aborts = false;
    int readTimeout = 30;
    /// The records that were read last. A list with strings of earlier records keeps those alive itself.
    platform::SharedBlock block;
    // Children are mostly read in order. This is the record that is expected next, and below its parent.
    std::int64_t expected = -1;
    std::int64_t expectedParent = 0;
    std::int64_t lastExpected = -1;
    bool expectedAreDense = false; ///< whether few records of other directories lie between them
    std::optional<platform::AccountFiles> accounts;
    // The ids of /users and /groups if their records are lines of files, otherwise 0.
    std::int64_t usersDirectory = 0;
    std::int64_t groupsDirectory = 0;
    // Their records, once they have been read.
    std::optional<platform::RecordLines> users;
    std::optional<platform::RecordLines> groups;
    std::string file;
    // Prepared only once, because a report of many records would spend most of its time preparing. Destroyed
    // before the connection.
    std::optional<platform::SqliteStatement> oneRecord;
    std::optional<platform::SqliteStatement> nextRecords;
    std::optional<platform::SqliteStatement> nextNeighbors;
    std::optional<platform::SqliteStatement> childNamed;

    void applyTimeout();
    [[nodiscard]] int begin();

    /// Returns `statement`, ready for new values.
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
    const SharedBlock* block = nullptr; ///< belongs to the domain
    const platform::RecordBlock::Record* record = nullptr;
};

/// Begins to read, and finds the directories whose records are lines of files. Returns SQLite's error code.
[[nodiscard]] int beginReading(ni_domain& domain);

/// The records of a directory that are lines of a file, read when they are first needed. Null when the
/// directory is not one of those, or on failure, with `*error` set to SQLite's code.
[[nodiscard]] const RecordLines* linesOf(ni_domain& domain, std::int64_t directory, int* error);

/// Finds the record with that id. Returns NI_BADID when there is none, NI_SYSTEMERR when it is damaged.
[[nodiscard]] ni_status findRecord(ni_domain& domain, std::uint32_t id, FoundRecord* found);

/// Whether there is such a record in the store. On failure false, with `*error` set to SQLite's code.
[[nodiscard]] bool recordExists(ni_domain& domain, std::uint32_t id, int* error);

/// Appends the ids of the records below `parent` in the store. Returns NI_BADID when there is no record
/// `parent`.
[[nodiscard]] ni_status addStoredChildren(ni_domain& domain, std::uint32_t parent, ni_idlist* children);

} // namespace platform
