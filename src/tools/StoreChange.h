#pragma once

#include "directory/DirectoryRules.h"
#include "platform/netinfo/Store.h"
#include "platform/posix/Status.h"
#include "tools/DirectorySession.h"

#include <string_view>

namespace tools {

/// Why the deletion of a record that does not exist is refused.
inline constexpr std::string_view nothingToDelete = "there is no such record; nothing was deleted";

/// Carries out `change`, which must pass checkDirectoryChange, in the store's transaction. On failure the
/// store is unchanged, unless the store itself has failed. Records in `accounts` what concerns the root's
/// file server.
[[nodiscard]] platform::Status changeStore(platform::Store& store, const DirectoryChange& change,
                                           DirectorySession::AccountChanges& accounts);

} // namespace tools
