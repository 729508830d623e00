#pragma once

#include "directory/DirectoryRules.h"
#include "platform/netinfo/Store.h"
#include "platform/posix/Status.h"
#include "tools/DirectorySession.h"

/// Carries out `change`, which keeps the directory's rules, in the store's transaction. Where it fails, the
/// store is as it was, unless the store itself failed. Notes in `accounts` what reaches the root's file
/// server.
[[nodiscard]] platform::Status changeStore(platform::Store& store, const DirectoryChange& change,
                                           DirectorySession::AccountChanges& accounts);
