#pragma once

struct sqlite3;

namespace platform {

/// Turns a store of the layout storeVersionOfRows into today's layout, in the caller's transaction or private
/// copy. Returns SQLITE_OK, or what failed; the caller must then roll back.
[[nodiscard]] int upgradeStore(sqlite3* database);

} // namespace platform
