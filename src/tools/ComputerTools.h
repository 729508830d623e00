#pragma once

#include "directory/DirectoryRules.h"
#include "platform/posix/Status.h"
#include "tools/DirectoryTools.h"

#include <string>

// The directory's tools on this computer itself. What they refuse beyond the directory's rules: accounts of
// the system, which have numbers below those of login.defs(5) and are not Brindle's own, the administrators'
// groups, number 0, and deleting or renaming the user who runs Brindle.

/// Carries out a change that keeps the directory's rules. On failure nothing was changed.
[[nodiscard]] platform::Status changeComputer(const DirectoryPlace& place, const DirectoryChange& change);

/// Sets the password of the user at `path` ("/Users/NAME"), for the computer and for Samba alike. Never
/// quotes the password. On failure the user has the password from before.
[[nodiscard]] platform::Status setComputerPassword(const DirectoryPlace& place, const std::string& user,
                                                   const std::string& password);
