#pragma once

#include "directory/DirectoryRules.h"
#include "platform/posix/Status.h"
#include "tools/DirectoryTools.h"

#include <string>

namespace tools {

// The directory's tools on this computer itself. In addition to what the directory's rules refuse, they
// refuse what directory/AccountRules.h does: changing accounts of the system, changing who administers the
// computer, and deleting or renaming the user who runs Brindle.

/// Carries out a change, which must pass checkDirectoryChange. On failure nothing has changed.
[[nodiscard]] platform::Status changeComputer(const DirectoryPlace& place, const DirectoryChange& change);

/// Sets the password of `user`, both for the computer and for Samba. A failure never quotes the password, and
/// leaves the user with the old one.
[[nodiscard]] platform::Status setComputerPassword(const DirectoryPlace& place, const std::string& user,
                                                   const std::string& password);

} // namespace tools
