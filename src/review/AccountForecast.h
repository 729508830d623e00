#pragma once

#include "directory/AccountRules.h"

#include <map>
#include <optional>
#include <set>
#include <string>

namespace review {

/// Follows how the runs of a plan would change this computer's own accounts, and finds the runs that its
/// tools are bound to refuse.
class AccountForecast {
  public:
    /// Starts with the current accounts. None when the current host keeps its accounts in the directory
    /// alone, or when they cannot be read.
    [[nodiscard]] static std::optional<AccountForecast> ofComputer();

    /// Fails, saying why, when the computer's tools are bound to refuse this change of an account. Otherwise
    /// applies the change. It must pass checkDirectoryChange.
    [[nodiscard]] platform::Status take(const DirectoryChange& change);

    /// Fails, saying why, when the user's password cannot be set.
    [[nodiscard]] platform::Status checkPassword(const std::string& user) const;

    /// Whether there is an account at this path.
    [[nodiscard]] bool exists(const RecordPath& path) const;

  private:
    AccountForecast() = default;

    void follow(const DirectoryChange& change, const RecordPath& path);
    void remove(const RecordPath& path);
    void changeLine(const DirectoryChange& change, const RecordPath& path);
    /// Makes the account as soon as its numbers are known, as the tools do.
    void collect(const DirectoryChange& change, const RecordPath& path);

    ComputerAccounts accounts_;
    std::set<RecordPath> ours_; ///< accounts that Brindle has made
    std::map<RecordPath, std::map<std::string, unsigned>> collected_;
};

} // namespace review
