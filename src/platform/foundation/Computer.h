#pragma once

#include <set>
#include <string>

namespace platform {

/// What is said of a server in one line.
struct ServerLine {
    std::string text;
    bool canBeStarted = false; ///< it is installed and does not run
};

/// Names of accounts that the computer has for its own programs. Nobody who shares folders has to do with
/// them.
struct SystemAccounts {
    std::set<std::string> users;
    std::set<std::string> groups;
};

/// What a front-end can say of the computer beside what the application shows. Only the system host has one.
class Computer {
  public:
    virtual ~Computer() = default;
    /// What is not installed, each with its package, and what works without it: one line, empty where nothing
    /// is missing. In the user's language.
    [[nodiscard]] virtual std::string whatIsMissing() const = 0;
    /// Whether the SMB server runs, since when, and where it listens; empty where none is installed.
    [[nodiscard]] virtual ServerLine smbServer() const = 0;
    /// Whether there is an AFP server, and what becomes of its settings where there is none.
    [[nodiscard]] virtual std::string afpServerLine() const = 0;
    /// Why no Public folder of the user can be offered, in a sentence; empty where one can be.
    [[nodiscard]] virtual std::string whyNoPublicFolder(const std::string& user) const = 0;
    /// The accounts whose numbers are below those of people and their groups, as they are now: without those
    /// that Brindle has made, and without the groups that users are put into all the same. Empty where that
    /// cannot be told.
    [[nodiscard]] virtual SystemAccounts systemAccounts() const = 0;
};

} // namespace platform
