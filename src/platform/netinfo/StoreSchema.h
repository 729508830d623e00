#pragma once

#include <sqlite3.h>

namespace platform {

// What readers and writers of a store share: how it is marked and its layout.

/// Marks an SQLite file as a directory's store (the bytes "BrDi").
inline constexpr int storeApplicationId = 0x42724469;
/// The layout that this Brindle writes. A later Brindle's has a higher number.
inline constexpr int storeVersion = 2;
/// The error for a store with a higher layout number. SQLite does not use this code itself.
inline constexpr int storeIsNewer = SQLITE_FORMAT;
inline constexpr const char* newerStoreText =
    "it was written by a newer Brindle; use that one, this one leaves the file as it is";
/// The previous layout, with a row for each property and each value of a record.
inline constexpr int storeVersionOfRows = 1;

/// A record's place in paths is its parent and name; its `name` property holds the same name. Ids grow and
/// are never reused, so that id order is the order of creation. `content` holds the properties
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

/// Makes the records that always exist in an empty store: users, groups, and those above the shares. Returns
/// SQLITE_OK, or what failed.
[[nodiscard]] int addStandingRecords(sqlite3* database);

} // namespace platform
