#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace platform {

// SQLite's connections and statements with owners.

struct CloseConnection {
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
};

/// Flags for a connection that only one thread uses, so that SQLite need not take a lock for every value it
/// reads.
inline constexpr int sqliteOwnConnection = SQLITE_OPEN_PRIVATECACHE | SQLITE_OPEN_NOMUTEX;

using SqliteConnection = std::unique_ptr<sqlite3, CloseConnection>;

/// A prepared statement. Parameters are numbered from 1, columns from 0. Strings that are bound must live
/// until the last step.
class SqliteStatement {
  public:
    SqliteStatement(sqlite3* database, std::string_view sql);

    ~SqliteStatement() { sqlite3_finalize(statement_); }

    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

    SqliteStatement& bind(int parameter, std::int64_t number);
    SqliteStatement& bind(int parameter, std::string_view text);
    SqliteStatement& bindBytes(int parameter, std::string_view bytes);

    /// Steps to the next row. False after the last one or on failure; error() says which.
    [[nodiscard]] bool step();

    /// SQLITE_OK, or the code of the first failure.
    [[nodiscard]] int error() const { return error_; }

    void reset() { sqlite3_reset(statement_); }

    [[nodiscard]] std::int64_t number(int column) const { return sqlite3_column_int64(statement_, column); }

    /// A string or bytes; valid until the next step.
    [[nodiscard]] std::string_view text(int column) const;

  private:
    sqlite3_stmt* statement_ = nullptr;
    int error_ = SQLITE_OK;
};

} // namespace platform
