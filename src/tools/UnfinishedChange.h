#pragma once

#include "platform/posix/Status.h"

#include <optional>
#include <string>

/// A change of an account that several places must follow one after another: the files of accounts, the
/// store, and Samba's password database, which finds an account by its name and number and so has to let go
/// of it meanwhile. It is written down before the first step, in a file that only root reads, so that the
/// next run finishes what a killed one began.
struct UnfinishedChange {
    struct Account {
        std::string name; ///< empty: none, the account is deleted
        unsigned number = 0;
    };

    bool isUser = false;
    Account before;
    Account after; ///< of a deleted user the number of the group of that name, 0 where there is none
    std::string sambaAccount; ///< what Samba keeps of it, a secret; may be empty

    /// Writes it down at `path`. Fails when it cannot be flushed to the disk.
    [[nodiscard]] platform::Status write(const std::string& path) const;

    /// The change that was written down at `path`; none when there is no file. Fails when it cannot be read.
    [[nodiscard]] static platform::Result<std::optional<UnfinishedChange>> read(const std::string& path);

    /// Takes the file away.
    [[nodiscard]] static platform::Status forget(const std::string& path);
};
