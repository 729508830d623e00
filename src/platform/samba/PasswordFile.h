#pragma once

#include "platform/posix/Status.h"
#include "platform/samba/SambaUser.h"

#include <chrono>
#include <optional>
#include <string>

namespace platform {

/// Reads the account's entry from Samba's password database (tdbsam, a file of tdb(3)) without starting a
/// program, because loading pdbedit(8) takes longer than everything else that a look-up needs. The outer
/// optional is none when the file cannot be read in this way: it is missing, locked by a writer, damaged, or
/// not of version 4, or it has no entry under a name that Samba may write in other small letters. Use pdbedit
/// in that case. Hashes are not returned.
[[nodiscard]] std::optional<std::optional<SambaUser>> userInPasswordFile(const std::string& file,
                                                                         const std::string& user);

/// Waits until no program is using such a file. Returns whether moveInPasswordFile() can then change it: not
/// when it is not of version 4. Fails when waiting takes longer than `patience`, and when the file or the
/// account's entry cannot be read.
[[nodiscard]] Result<bool> awaitPasswordFile(const std::string& file, const std::string& user,
                                             std::chrono::milliseconds patience);

/// Stores an account's entry in such a file under another name, in one step and with everything else that it
/// holds; pdbedit cannot rename one. It replaces an entry that already has that name. Removes the entry when
/// `newName` is empty. Ok when there is no entry or no file, or the file is not of version 4. Waits and fails
/// as awaitPasswordFile() does.
[[nodiscard]] Status moveInPasswordFile(const std::string& file, const std::string& user,
                                        const std::string& newName, std::chrono::milliseconds patience);

} // namespace platform
