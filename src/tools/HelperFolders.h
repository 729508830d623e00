#pragma once

#include "platform/host/DirectoryAccounts.h"
#include "platform/posix/Status.h"

#include <optional>
#include <string>

#include <sys/stat.h>

// The helper's chown and chmod. Both change one folder, never a file, and none of the system's: an
// administrator shares folders for people, and a slip must not lock the computer. A link is followed, and
// what it leads to is judged. On this computer, one that anybody could replace is refused. An argument is a
// name, whatever it begins with.

/// Where the one who asks works: on an embedded root with their own rights, or on this computer as root.
enum class FolderHost { Embedded, Computer };

/// Whether a folder is the system's own: one of /etc, /usr, /boot, /dev, /proc, /sys or /run (but for the
/// volumes in /run/media) with all below, or one of /, /var, /tmp, /home, /root and the like themselves. On
/// this computer also what is below /var/lib and /var/spool, and a user's keys (.ssh, .gnupg) with all below.
/// `path` holds no links. `status` tells the folder too, because a mount can show it under another path.
[[nodiscard]] bool isSystemFolder(const std::string& path, const struct stat& status, FolderHost host);

/// Fails where anybody could put another folder in the place of `folder`: on this computer, its owner and
/// mode stay as they are. Ok for one that cannot be looked at.
[[nodiscard]] platform::Status checkWayTo(const std::string& folder);

/// What one of the two would do to a folder.
struct FolderOrder {
    struct stat status {}; ///< the folder's, as it is

    // What it would be given; none stays.
    std::optional<uid_t> owner;
    std::optional<gid_t> group;
    std::optional<mode_t> mode; ///< with the bits above 0777 that stay
};

/// What changeOwner and changeMode below would do, with the rights of the user `caller` (0: of an
/// administrator); fails where they would. Nothing is changed.
[[nodiscard]] platform::Result<FolderOrder> examineOwner(const std::string& ownerAndGroup,
                                                         const std::string& folder,
                                                         const platform::DirectoryAccounts& accounts,
                                                         uid_t caller, FolderHost host);
[[nodiscard]] platform::Result<FolderOrder> examineMode(const std::string& mode, const std::string& folder,
                                                        uid_t caller, FolderHost host);

/// `ownerAndGroup` is OWNER:GROUP, names that `accounts` knows; an empty one of them stays as it is. Numbers
/// are no names.
[[nodiscard]] platform::Status changeOwner(const std::string& ownerAndGroup, const std::string& folder,
                                           const platform::DirectoryAccounts& accounts, FolderHost host);

/// `mode` is octal, 0 to 777; the folder's bits above these stay.
[[nodiscard]] platform::Status changeMode(const std::string& mode, const std::string& folder,
                                          FolderHost host);
