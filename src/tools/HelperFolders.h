#pragma once

#include "DirectoryAccounts.h"
#include "HelperComplaint.h"

#include <string>

// The helper's chown and chmod. Both change one folder, never a file, and never `/`, the system's own folders
// (/etc, /usr, /boot, /dev, /proc, /sys with all below; /var, /run, /tmp, /home, /root and the like
// themselves): an administrator shares folders for people, and a slip must not lock the computer. A link is
// followed, and what it leads to is judged. An argument is a name, whatever it begins with.

/// `ownerAndGroup` is OWNER:GROUP, names that `accounts` knows; an empty one of them stays as it is. Numbers
/// are no names.
[[nodiscard]] HelperComplaint changeOwner(const std::string& ownerAndGroup, const std::string& folder,
                                          const platform::DirectoryAccounts& accounts);

/// `mode` is octal, 0 to 777; the folder's bits above these stay.
[[nodiscard]] HelperComplaint changeMode(const std::string& mode, const std::string& folder);
