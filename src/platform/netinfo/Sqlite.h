#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace platform {

// What the reader and the writer of a store share: its layout, and SQLite's statements as values.

/// Marks an SQLite file as a directory's store (the bytes "BrDi").
inline constexpr int storeApplicationId = 0x42724469;
inline constexpr int storeVersion = 2;

/// A record's place in paths is its parent and name; its `name` property holds the same name. Ids grow and
/// are never given twice, so that id order is the order of creation. `content` holds the properties
/// (RecordContent.h).
inline constexpr const char* storeSchema = R"(
CREATE TABLE record (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    parent INTEGER REFERENCES record (id),
    name TEXT NOT NULL,
    content BLOB NOT NULL DEFAULT x'',
    UNIQUE (parent, name)
);
CREATE INDEX record_by_parent ON record (parent);
INSERT INTO record (id, parent, name) VALUES (0, NULL, '');
)";

/// The records that always exist, in a store that holds no others.
inline constexpr const char* standingRecords = R"(
INSERT INTO record (id, parent, name) VALUES (1, 0, 'users'), (2, 0, 'groups'), (3, 0, 'config'), (4, 3, 'Brindle');
)";

struct CloseConnection {
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
};

/// A connection belongs to one thread: SQLite need not take a lock at every value that is read.
inline constexpr int kSqliteOwnConnection = SQLITE_OPEN_PRIVATECACHE | SQLITE_OPEN_NOMUTEX;

using SqliteConnection = std::unique_ptr<sqlite3, CloseConnection>;

/// A prepared statement. Parameters count from 1, columns from 0. Texts that are bound must live until the
/// last step.
class SqliteStatement {
  public:
    SqliteStatement(sqlite3* database, std::string_view sql);

    ~SqliteStatement() { sqlite3_finalize(statement_); }

    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

    SqliteStatement& bind(int parameter, std::int64_t number);
    SqliteStatement& bind(int parameter, std::string_view text);
    SqliteStatement& bindBytes(int parameter, std::string_view bytes);

    /// True while there is a row. After the last one, or a failure, error() tells which it was.
    [[nodiscard]] bool step();

    /// SQLITE_OK or the code of what failed so far.
    [[nodiscard]] int error() const { return error_; }

    void reset() { sqlite3_reset(statement_); }

    [[nodiscard]] std::int64_t number(int column) const { return sqlite3_column_int64(statement_, column); }

    /// A text or bytes. Lives until the next step.
    [[nodiscard]] std::string_view text(int column) const;

  private:
    sqlite3_stmt* statement_ = nullptr;
    int error_ = SQLITE_OK;
};

} // namespace platform
