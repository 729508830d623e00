#pragma once

struct sqlite3;

namespace platform {

/// Turns a store of the layout storeVersionOfRows into today's, inside the caller's transaction or in a copy
/// of its own. SQLITE_OK, or what failed; the caller rolls back then.
[[nodiscard]] int upgradeStore(sqlite3* database);

} // namespace platform
