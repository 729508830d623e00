#pragma once

#include "directory/DirectoryRules.h"
#include "platform/netinfo/Store.h"
#include "platform/posix/Status.h"
#include "tools/DirectorySession.h"

namespace tools {

/// Carries out `change`, which must pass checkDirectoryChange, in the store's transaction. On failure the
/// store is unchanged, unless the store itself has failed. Records in `accounts` what concerns the root's
/// file server.
[[nodiscard]] platform::Status changeStore(platform::Store& store, const DirectoryChange& change,
                                           DirectorySession::AccountChanges& accounts);

} // namespace tools
