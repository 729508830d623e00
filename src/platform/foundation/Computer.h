#pragma once

#include <set>
#include <string>

namespace platform {

/// One line about a server, in the user's language.
struct ServerLine {
    std::string text;
    bool canBeStarted = false; ///< it is installed but not running
};

/// Names of accounts that exist for the computer's own programs. They are of no interest for sharing folders.
struct SystemAccounts {
    std::set<std::string> users;
    std::set<std::string> groups;
};

/// What a front-end can say about the computer beyond what the application itself shows. Only the system host
/// has one.
class Computer {
  public:
    virtual ~Computer() = default;
    /// Says in one line what is not installed, in which package it is, and what works without it; empty when
    /// nothing is missing. In the user's language.
    [[nodiscard]] virtual std::string whatIsMissing() const = 0;
    /// Says whether the SMB server is running, since when, and on which addresses it listens; empty when none
    /// is installed.
    [[nodiscard]] virtual ServerLine smbServer() const = 0;
    /// Says whether an AFP server is running, and if not, what that means for its settings. In the user's
    /// language.
    [[nodiscard]] virtual std::string afpServerLine() const = 0;
    /// Says in a sentence why the user's Public folder cannot be offered; empty when it can.
    [[nodiscard]] virtual std::string whyNoPublicFolder(const std::string& user) const = 0;
    /// The accounts whose numbers are below those for people and their groups, read at each call. Accounts
    /// that Brindle has made, and groups that people are put into whatever their number, are left out. Empty
    /// when the accounts cannot be read.
    [[nodiscard]] virtual SystemAccounts systemAccounts() const = 0;
};

} // namespace platform
