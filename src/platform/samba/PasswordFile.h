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

/// Whether the file is there and of version 4.
[[nodiscard]] bool isKnownPasswordFile(const std::string& file);

/// Waits until no program is using such a file, so that moveInPasswordFile() can change it. Fails when that
/// takes longer than `patience`, or when the account has an unreadable entry.
[[nodiscard]] Status awaitPasswordFile(const std::string& file, const std::string& user,
                                       std::chrono::milliseconds patience);

/// Stores an account's entry in such a file under another name, in one step and with everything else that it
/// holds; pdbedit cannot rename one. It replaces an entry that already has that name. Removes the entry when
/// `newName` is empty. Ok when there is no entry. Waits as awaitPasswordFile() does.
[[nodiscard]] Status moveInPasswordFile(const std::string& file, const std::string& user,
                                        const std::string& newName, std::chrono::milliseconds patience);

} // namespace platform
