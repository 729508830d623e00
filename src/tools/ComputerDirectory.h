#pragma once

#include "directory/AccountRules.h"
#include "directory/DirectoryRules.h"
#include "platform/host/SystemFiles.h"
#include "platform/netinfo/AccountFiles.h"
#include "platform/netinfo/Store.h"
#include "platform/posix/Status.h"
#include "tools/ComputerLock.h"
#include "tools/DirectoryTools.h"
#include "tools/UnfinishedChange.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tools {

/// This computer's directory while one run changes it: the account files, which the computer's own programs
/// write, and the store, which holds what those files cannot. An account's record in the store belongs to the
/// account with that name and number, and has a state.
class ComputerDirectory {
  public:
    /// What an account's record in the store represents.
    enum class State {
        Collecting, ///< an account that has not been made yet, because its number or its group is not known
        Made,       ///< an account that Brindle has made
        Found       ///< another account, with properties that its line cannot hold
    };

    /// Takes the lock, finishes what a killed run has begun, and removes the records of accounts that are
    /// gone. status() says whether that succeeded.
    explicit ComputerDirectory(const DirectoryPlace& place);

    [[nodiscard]] const platform::Status& status() const { return status_; }

    /// The computer's accounts, as the rules need them.
    [[nodiscard]] const ComputerAccounts& accounts() const { return accounts_; }

    /// The store, with an open transaction.
    [[nodiscard]] platform::Store& store();
    /// Commits the transaction. The next call of store() begins another.
    [[nodiscard]] platform::Status commit();

    void setState(platform::Store::Record record, State state);
    /// Whether Brindle has made the account at that path.
    [[nodiscard]] bool hasMade(const RecordPath& path);

    /// Renames, renumbers or deletes an account by running `program`, one of the computer's own programs.
    /// Commits first. Fails, with nothing changed, when the program fails.
    [[nodiscard]] platform::Status carryThrough(UnfinishedChange change,
                                                const std::vector<std::string>& program);

  private:
    [[nodiscard]] std::optional<State> stateOf(platform::Store::Record record);
    [[nodiscard]] platform::Status readLines();
    [[nodiscard]] platform::Status finishKilledRun();
    /// Updates the store and Samba's database to match the account files, then forgets the change.
    [[nodiscard]] platform::Status settle(const UnfinishedChange& change);
    /// Updates Samba's database; `account` is what the change has made of the user, or failed to change.
    [[nodiscard]] platform::Status followInSamba(const UnfinishedChange& change,
                                                 const UnfinishedChange::Account& account);
    /// Makes the group with the deleted user's name again if it was deleted with the user.
    [[nodiscard]] platform::Status keepOwnGroup(const UnfinishedChange& change);
    void followInStore(const UnfinishedChange& change);
    void takeAwayGoneAccounts();
    [[nodiscard]] bool exists(bool isUser, const UnfinishedChange::Account& account) const;

    DirectoryPlace place_;
    platform::AccountFiles files_;
    ComputerAccounts accounts_;
    std::optional<platform::Result<ComputerLock>> lock_;
    platform::Status status_;
    std::unique_ptr<platform::Store> store_;
};

} // namespace tools
