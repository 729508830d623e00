#pragma once

#include "platform/posix/Status.h"

#include <optional>
#include <string>

namespace tools {

/// A change of an account that has to be made in several places in turn: in the account files, in the store,
/// and in Samba's password database. The change is written to a file, readable only by root, before the first
/// step, so that the next run can finish what a killed run began.
struct UnfinishedChange {
    struct Account {
        std::string name; ///< empty: there is no such account, it is deleted
        unsigned number = 0;
    };

    bool isUser = false;
    Account before;
    Account after; ///< for a deleted user: the number of the group with that name, or 0
    /// What Samba stores about the account, a secret, if it has to be removed from Samba's database while the
    /// account changes; otherwise empty.
    std::string sambaAccount;

    /// Writes the change to the file at `path`. Fails when it cannot be flushed to disk.
    [[nodiscard]] platform::Status write(const std::string& path) const;

    /// The change in the file at `path`; none when there is no file. Fails when it cannot be read.
    [[nodiscard]] static platform::Result<std::optional<UnfinishedChange>> read(const std::string& path);

    /// Removes the file.
    [[nodiscard]] static platform::Status forget(const std::string& path);
};

} // namespace tools
