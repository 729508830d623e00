#pragma once

#include "platform/netinfo/Store.h"
#include "platform/posix/Status.h"
#include "tools/DirectoryTools.h"

#include <memory>
#include <set>
#include <span>
#include <string>

namespace platform {
class SambaAccounts;
} // namespace platform

namespace tools {

/// Consecutive runs of nicl that change the directory in one transaction. The first run opens the store, and
/// from then until the commit nobody else can read or write it. A run that fails changes nothing and does not
/// affect earlier runs; only a failure of the disk undoes all of them. The destructor undoes what was not
/// committed. On this computer itself each run is committed when it ends, because there are no transactions
/// for its accounts.
class DirectorySession {
  public:
    explicit DirectorySession(DirectoryPlace place);

    /// Runs nicl with these arguments; see DirectoryTools.h. After a run for which the store could not be
    /// opened, perhaps after a long wait, the next one does not wait for it.
    [[nodiscard]] ToolResult nicl(std::span<const std::string> arguments);

    /// Writes the account lists of the root's file server, then commits the changes of all runs. Ok when
    /// there are none. On failure nothing has changed, with one exception: the passwords of deleted users are
    /// removed after the commit, and if that fails, everything else is committed.
    [[nodiscard]] platform::Status commit();

    /// Whether the last commit() has committed the changes, even if it failed afterwards.
    [[nodiscard]] bool hasCommitted() const { return hasCommitted_; }

    /// What runs have changed about the accounts of the root's file server.
    struct AccountChanges {
        bool reachLists = false;
        std::set<std::string> forgotten; ///< deleted users, whose passwords must be removed
    };

  private:
    [[nodiscard]] platform::Store& store();
    /// Writes the account lists. Called before the commit, so that no other writer can come between.
    [[nodiscard]] platform::Status tellServer(platform::Store& store, AccountChanges& changes) const;
    /// Removes users without a password from `forgotten`. Fails when the password database cannot be read;
    /// the users are then not deleted.
    [[nodiscard]] static platform::Status checkForgotten(const platform::SambaAccounts& accounts,
                                                         std::set<std::string>* forgotten);
    [[nodiscard]] platform::Status forgetPasswords(const std::set<std::string>& users) const;

    DirectoryPlace place_;
    std::unique_ptr<platform::Store> store_; ///< open since the first run after a commit
    bool isOpen_ = false;                    ///< the store could be opened, so it may hold changes
    bool hasWaited_ = false;                 ///< the last attempt to open the store has failed
    bool hasCommitted_ = false;
    AccountChanges accounts_;
};

} // namespace tools
