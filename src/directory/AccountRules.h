#pragma once

#include "directory/DirectoryRules.h"
#include "platform/netinfo/AccountLines.h"
#include "platform/posix/Status.h"

#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

// What may be changed of this computer's own accounts, beyond what every directory takes: not those that the
// system itself needs, not who administers the computer, and nothing that a line of its files cannot hold.
// Nothing here reads or writes an account: the tools ask with the accounts as they are, and whoever wants to
// know beforehand asks the same.

/// This computer's accounts, as the rules look at them.
struct ComputerAccounts {
    std::vector<platform::UserLine> users;
    std::vector<platform::GroupLine> groups;
    platform::AccountLimits limits;
    uid_t user = 0; ///< who runs Brindle

    /// Null where there is none.
    [[nodiscard]] const platform::UserLine* findUser(const std::string& name) const;
    [[nodiscard]] const platform::GroupLine* findGroup(const std::string& name) const;
    [[nodiscard]] const platform::GroupLine* findGroup(unsigned gid) const;
};

/// Ok when the computer's own programs may be asked for the change, which is one of an account and keeps the
/// rules of checkDirectoryChange. A change that leaves everything as it is may be asked for always. `isOurs`:
/// Brindle has made the account.
[[nodiscard]] platform::Status checkAccountChange(const ComputerAccounts& accounts,
                                                  const DirectoryChange& change, bool isOurs);

/// Ok when the user's password may be set: not for an account of the system, unless `isOurs`.
[[nodiscard]] platform::Status checkOrdinaryUser(const platform::UserLine& line, bool isOurs,
                                                 const platform::AccountLimits& limits);

/// Whether the property of the account at `path` stands in its line of the files.
[[nodiscard]] bool isPropertyOfLine(const RecordPath& path, const std::string& property);

/// The number among the change's values; none when they are no one number that an account can have.
[[nodiscard]] std::optional<unsigned> numberOf(const DirectoryChange& change);

/// Who is in the group once the change of its property "users" is made. Values to delete that are not there
/// count for nothing.
[[nodiscard]] std::vector<std::string> membersAfter(const ComputerAccounts& accounts,
                                                    const platform::GroupLine& group,
                                                    const DirectoryChange& change, bool isOurs);
