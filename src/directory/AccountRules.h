#pragma once

#include "directory/DirectoryRules.h"
#include "platform/netinfo/AccountLines.h"
#include "platform/posix/Status.h"

#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

// The rules for changes of this computer's own accounts, in addition to those of every directory: accounts
// that the system itself needs and the choice of administrators do not change, and a value must fit in a line
// of the account files. Nothing here reads or writes accounts: the tools pass them in, and so does whoever
// wants to know beforehand.

/// This computer's accounts, as the rules need them.
struct ComputerAccounts {
    std::vector<platform::UserLine> users;
    std::vector<platform::GroupLine> groups;
    platform::AccountLimits limits;
    uid_t user = 0; ///< the user who runs Brindle

    /// Null when there is none.
    [[nodiscard]] const platform::UserLine* findUser(const std::string& name) const;
    [[nodiscard]] const platform::GroupLine* findGroup(const std::string& name) const;
    [[nodiscard]] const platform::GroupLine* findGroup(unsigned gid) const;
};

/// Ok when the computer's own programs may be asked to make the change. It must be the change of an account
/// and pass checkDirectoryChange. A change that leaves everything as it is always passes. `isOurs`: Brindle
/// has made the account.
[[nodiscard]] platform::Status checkAccountChange(const ComputerAccounts& accounts,
                                                  const DirectoryChange& change, bool isOurs);

/// Ok when the user's password may be set. Fails for an account of the system, unless `isOurs`.
[[nodiscard]] platform::Status checkOrdinaryUser(const platform::UserLine& line, bool isOurs,
                                                 const platform::AccountLimits& limits);

/// Whether this property of the account at `path` is part of its line in the account files.
[[nodiscard]] bool isPropertyOfLine(const RecordPath& path, const std::string& property);

/// The change's value as an account number; none unless there is exactly one value and it is a valid number.
[[nodiscard]] std::optional<unsigned> numberOf(const DirectoryChange& change);

/// The members of the group after the change of its property "users". Values to delete that are not there are
/// ignored.
[[nodiscard]] std::vector<std::string> membersAfter(const ComputerAccounts& accounts,
                                                    const platform::GroupLine& group,
                                                    const DirectoryChange& change, bool isOurs);
