#pragma once

#include "directory/AccountRules.h"
#include "directory/DirectoryRules.h"
#include "platform/host/SystemFiles.h"
#include "platform/netinfo/AccountFiles.h"
#include "platform/netinfo/Store.h"
#include "platform/posix/Status.h"
#include "tools/ComputerStore.h"
#include "tools/DirectoryTools.h"
#include "tools/UnfinishedChange.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

/// This computer's directory while one run changes it: the files of accounts, which the computer's own
/// programs write, and the store, in which stands what those cannot hold. A record of an account in the store
/// belongs to the account of its name and number, and says how far its writers have come with it.
class ComputerDirectory {
  public:
    /// What a record of the store stands for.
    enum class State {
        Collecting, ///< an account that is not made yet, because its number or its group is not known
        Made,       ///< an account that Brindle has made
        Found       ///< an account that was there, with properties that its line cannot hold
    };

    /// Takes the lock, finishes what a killed run has begun, and takes away the records of accounts that are
    /// gone. status() says whether it could.
    explicit ComputerDirectory(const DirectoryPlace& place);

    [[nodiscard]] const platform::Status& status() const { return status_; }

    /// The computer's accounts, as the rules look at them.
    [[nodiscard]] const ComputerAccounts& accounts() const { return accounts_; }

    /// The store, with a transaction that has begun.
    [[nodiscard]] platform::Store& store();
    /// Commits the transaction. The next call of store() begins another.
    [[nodiscard]] platform::Status commit();

    [[nodiscard]] std::optional<State> stateOf(platform::Store::Record record);
    void setState(platform::Store::Record record, State state);
    /// Whether Brindle has made the account of that path.
    [[nodiscard]] bool hasMade(const RecordPath& path);

    /// Changes the name or the number of an account, or deletes it, by a run of one of the computer's own
    /// programs. Commits first. Fails, with nothing changed, when the program does.
    [[nodiscard]] platform::Status carryThrough(UnfinishedChange change,
                                                const std::vector<std::string>& program);

  private:
    [[nodiscard]] platform::Status readLines();
    [[nodiscard]] platform::Status finishKilledRun();
    /// Puts the store and Samba's database where the files of accounts are, and forgets the change.
    [[nodiscard]] platform::Status settle(const UnfinishedChange& change);
    /// A deleted user leaves the group of that name behind.
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
