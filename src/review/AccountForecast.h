#pragma once

#include "directory/AccountRules.h"

#include <map>
#include <optional>
#include <set>
#include <string>

namespace review {

/// This computer's own accounts while the runs of a plan would change them, and what its tools are bound to
/// refuse on the way.
class AccountForecast {
  public:
    /// The accounts as they are now; none where the directory of the current host has all of them itself, or
    /// where they cannot be read.
    [[nodiscard]] static std::optional<AccountForecast> ofComputer();

    /// Why the change of an account, which keeps the directory's rules, is bound to be refused; ok when it is
    /// not, and the accounts are then as it leaves them.
    [[nodiscard]] platform::Status take(const DirectoryChange& change);

    /// Why the password of the user cannot be set; ok when nothing is known against it.
    [[nodiscard]] platform::Status checkPassword(const std::string& user) const;

    /// Whether there is such an account.
    [[nodiscard]] bool exists(const RecordPath& path) const;

  private:
    AccountForecast() = default;

    void follow(const DirectoryChange& change, const RecordPath& path);
    void remove(const RecordPath& path);
    void changeLine(const DirectoryChange& change, const RecordPath& path);
    /// Makes the account when its numbers are known, as the tools do.
    void collect(const DirectoryChange& change, const RecordPath& path);

    ComputerAccounts accounts_;
    std::set<RecordPath> ours_; ///< those that Brindle has made
    std::map<RecordPath, std::map<std::string, unsigned>> collected_;
};

} // namespace review
