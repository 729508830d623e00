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
}

/// The directory while run after run of nicl changes it, all in one transaction. The first run opens the
/// store, and from then on nobody else reads or writes it until the commit. A run that fails leaves nothing
/// of its own, and what the runs before it did as it is; only a failure of the disk takes all of them back.
/// What was not committed is taken back at the end. On this computer itself each run is done when it ends:
/// its accounts know no transactions.
class DirectorySession {
  public:
    explicit DirectorySession(DirectoryPlace place);

    /// nicl with the words after its name; see DirectoryTools.h. Once others have kept the store for too
    /// long, later runs do not wait for it again.
    [[nodiscard]] ToolResult nicl(std::span<const std::string> arguments);

    /// Commits what the runs changed, the account lists of the root's file server first; ok when they changed
    /// nothing. On failure nothing of them all was changed, but for one: the passwords of users who are gone
    /// go last, once that is lasting, and where one stays after all, everything else is committed.
    [[nodiscard]] platform::Status commit();

    /// Whether the last commit has made the changes lasting.
    [[nodiscard]] bool hasCommitted() const { return hasCommitted_; }

    /// What runs have changed of the accounts that the root's file server knows.
    struct AccountChanges {
        bool reachLists = false;
        std::set<std::string> forgotten; ///< users who are gone, and whose passwords go with them
    };

  private:
    [[nodiscard]] platform::Store& store();
    /// Done before the commit, so that no other writer comes between.
    [[nodiscard]] platform::Status tellServer(platform::Store& store, AccountChanges& changes) const;
    /// Whose password cannot be forgotten is not deleted; who has none is taken off the list.
    [[nodiscard]] static platform::Status checkForgotten(const platform::SambaAccounts& accounts,
                                                         std::set<std::string>* forgotten);
    [[nodiscard]] platform::Status forgetPasswords(const std::set<std::string>& users) const;

    DirectoryPlace place_;
    std::unique_ptr<platform::Store> store_; ///< since the last commit
    bool isOpen_ = false;                    ///< it could be opened, and so may hold changes
    bool hasWaited_ = false;                 ///< in vain
    bool hasCommitted_ = false;
    AccountChanges accounts_;
};
