#pragma once

#include "platform/samba/SambaUser.h"

#include <optional>
#include <string>

namespace platform {

/// Reads the account's entry from Samba's password database (tdbsam, a file of tdb(3)) without starting a
/// program, because loading pdbedit(8) takes longer than everything else that a look-up needs. The outer
/// optional is none when the file cannot be read in this way: it is missing, locked by a writer, damaged, or
/// not of version 4. Use pdbedit in that case. Hashes are not returned.
[[nodiscard]] std::optional<std::optional<SambaUser>> userInPasswordFile(const std::string& file,
                                                                         const std::string& user);

} // namespace platform
