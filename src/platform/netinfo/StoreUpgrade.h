#pragma once

struct sqlite3;

namespace platform {

/// The layout before storeVersion: a row for each property and each value of a record.
inline constexpr int storeVersionOfRows = 1;

/// Turns a store of that layout into today's, inside the caller's transaction or in a copy of its own.
/// SQLITE_OK, or what failed; the caller rolls back then.
[[nodiscard]] int upgradeStore(sqlite3* database);

} // namespace platform
