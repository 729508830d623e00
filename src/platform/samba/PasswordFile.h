#pragma once

#include "platform/samba/SambaUser.h"

#include <optional>
#include <string>

namespace platform {

/// What Samba's own password database (tdbsam, a file of tdb(3)) holds of the account, read without starting
/// a program: pdbedit(8) takes longer to be loaded than all else that a question needs. The outer optional is
/// none when the file cannot be read so: it is missing, locked by a writer, damaged, or of another version
/// than the fourth. Ask pdbedit then. Passwords are not read.
[[nodiscard]] std::optional<std::optional<SambaUser>> userInPasswordFile(const std::string& file,
                                                                         const std::string& user);

} // namespace platform
