#include "platform/netinfo/Sqlite.h"

namespace platform {

SqliteStatement::SqliteStatement(sqlite3* database, std::string_view sql)
    : error_(sqlite3_prepare_v2(database, sql.data(), static_cast<int>(sql.size()), &statement_, nullptr)) {}

SqliteStatement& SqliteStatement::bind(int parameter, std::int64_t number) {
    if (error_ == SQLITE_OK) {
        error_ = sqlite3_bind_int64(statement_, parameter, number);
    }
    return *this;
}

SqliteStatement& SqliteStatement::bind(int parameter, std::string_view text) {
    if (error_ == SQLITE_OK) {
        // An empty view may have a null pointer, which SQLite would take for NULL.
        const char* bytes = text.empty() ? "" : text.data();
        error_ = sqlite3_bind_text64(statement_, parameter, bytes, text.size(), SQLITE_STATIC, SQLITE_UTF8);
    }
    return *this;
}

SqliteStatement& SqliteStatement::bindBytes(int parameter, std::string_view bytes) {
    if (error_ == SQLITE_OK) {
        const char* data = bytes.empty() ? "" : bytes.data();
        error_ = sqlite3_bind_blob64(statement_, parameter, data, bytes.size(), SQLITE_STATIC);
    }
    return *this;
}

bool SqliteStatement::step() {
    if (error_ != SQLITE_OK) {
        return false;
    }
    const int result = sqlite3_step(statement_);
    if (result == SQLITE_ROW) {
        return true;
    }
    if (result != SQLITE_DONE) {
        error_ = result;
    }
    return false;
}

std::string_view SqliteStatement::text(int column) const {
    const void* bytes = sqlite3_column_blob(statement_, column);
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_, column));
    return bytes == nullptr ? std::string_view() : std::string_view(static_cast<const char*>(bytes), size);
}

} // namespace platform
