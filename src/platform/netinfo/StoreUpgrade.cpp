#include "platform/netinfo/StoreUpgrade.h"

#include "platform/netinfo/RecordContent.h"
#include "platform/netinfo/Sqlite.h"
#include "platform/netinfo/StoreSchema.h"

#include <utility>

namespace platform {

namespace {

int execute(sqlite3* database, const std::string& sql) {
    return sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr);
}

int setContent(SqliteStatement& change, std::int64_t record, std::span<const StoredProperty> properties) {
    change.reset();
    const std::string content = packedContent(properties);
    return change.bindBytes(1, content).bind(2, record).step() ? SQLITE_MISUSE : change.error();
}

int packAllRecords(sqlite3* database) {
    SqliteStatement change(database, "UPDATE record SET content = ?1 WHERE id = ?2");
    SqliteStatement rows(database,
                         "SELECT p.record, p.position, p.name, v.record IS NOT NULL, v.value FROM property p "
                         "LEFT JOIN value v ON v.record = p.record AND v.property = p.position "
                         "ORDER BY p.record, p.position, v.position");
    std::vector<StoredProperty> properties; // of the record that is being read
    std::pair<std::int64_t, std::int64_t> place;
    int error = SQLITE_OK;
    while (error == SQLITE_OK && rows.step()) {
        const std::pair next{rows.number(0), rows.number(1)};
        if (!properties.empty() && next.first != place.first) {
            error = setContent(change, place.first, properties);
            properties.clear();
        }
        if (properties.empty() || next != place) {
            properties.push_back({std::string(rows.text(2)), {}});
        }
        place = next;
        if (rows.number(3) != 0) {
            properties.back().values.emplace_back(rows.text(4));
        }
    }
    error = error == SQLITE_OK ? rows.error() : error;
    return error == SQLITE_OK && !properties.empty() ? setContent(change, place.first, properties) : error;
}

} // namespace

int upgradeStore(sqlite3* database) {
    int error = execute(database, "ALTER TABLE record ADD COLUMN content BLOB NOT NULL DEFAULT x''");
    if (error == SQLITE_OK) {
        error = packAllRecords(database);
    }
    if (error == SQLITE_OK) {
        error = execute(database, "DROP TABLE value; DROP TABLE property; PRAGMA user_version = " +
                                      std::to_string(storeVersion));
    }
    return error;
}

} // namespace platform
