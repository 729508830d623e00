#pragma once

#include "platform/host/DirectoryAccounts.h"
#include "platform/posix/Status.h"

#include <string>

#include <sys/stat.h>

// The helper's chown and chmod. Both change one folder, never a file, and none of the system's: an
// administrator shares folders for people, and a slip must not lock the computer. A link is followed, and
// what it leads to is judged. An argument is a name, whatever it begins with.

/// Whether a folder is the system's own: one of /etc, /usr, /boot, /dev, /proc, /sys or /run (but for the
/// volumes in /run/media) with all below, or one of /, /var, /tmp, /home, /root and the like themselves.
/// `path` holds no links. `status` tells the folder too, because a mount can show it under another path.
[[nodiscard]] bool isSystemFolder(const std::string& path, const struct stat& status);

/// `ownerAndGroup` is OWNER:GROUP, names that `accounts` knows; an empty one of them stays as it is. Numbers
/// are no names.
[[nodiscard]] platform::Status changeOwner(const std::string& ownerAndGroup, const std::string& folder,
                                           const platform::DirectoryAccounts& accounts);

/// `mode` is octal, 0 to 777; the folder's bits above these stay.
[[nodiscard]] platform::Status changeMode(const std::string& mode, const std::string& folder);
