#pragma once

#include "platform/host/DirectoryAccounts.h"
#include "platform/posix/Status.h"

#include <optional>
#include <string>

#include <sys/stat.h>

namespace tools {

// The helper's chown and chmod. Both change one folder, never a file or a folder of the system, because a
// slip while sharing folders must not make the computer unusable. Links are followed, and the folder that
// they lead to is checked. On this computer, a folder that anybody could replace is refused. An argument is
// always a name, even if it begins with "-".

/// On which host the change is made: on an embedded root, for the user who owns it, or on this computer, as
/// root for everyone on it.
enum class FolderHost { Embedded, Computer };

/// Whether a folder is the system's own: one of /etc, /usr, /boot, /dev, /proc, /sys or /run (except for the
/// volumes in /run/media) or anything below them, or one of /, /var, /tmp, /home, /root and the like
/// themselves. On this computer also anything below /var/lib and /var/spool, and a user's keys (.ssh, .gnupg)
/// with everything below. `path` must hold no links. `status` identifies the folder too, because a mount can
/// show it under another path.
[[nodiscard]] bool isSystemFolder(const std::string& path, const struct stat& status, FolderHost host);

/// The same for a path that may hold links or name no folder yet.
[[nodiscard]] bool isSystemFolder(const std::string& folder, FolderHost host);

/// Fails when anybody could replace `folder` with another one, so that on this computer its owner and mode
/// may not be changed. Ok for a folder that cannot be examined.
[[nodiscard]] platform::Status checkNotReplaceable(const std::string& folder);

/// What chown or chmod would do to a folder.
struct FolderOrder {
    struct stat status {}; ///< the folder's current status

    // The new values; none: unchanged.
    std::optional<uid_t> owner;
    std::optional<gid_t> group;
    std::optional<mode_t> mode; ///< including the bits above 0777, which do not change
};

/// What changeOwner and changeMode below would do with the rights of the user `caller` (0: root). Fail when
/// those would. Nothing is changed.
[[nodiscard]] platform::Result<FolderOrder> examineOwner(const std::string& ownerAndGroup,
                                                         const std::string& folder,
                                                         const platform::DirectoryAccounts& accounts,
                                                         uid_t caller, FolderHost host);
[[nodiscard]] platform::Result<FolderOrder> examineMode(const std::string& mode, const std::string& folder,
                                                        uid_t caller, FolderHost host);

/// `ownerAndGroup` is OWNER:GROUP, with names that `accounts` knows, not numbers. An empty name leaves that
/// part unchanged.
[[nodiscard]] platform::Status changeOwner(const std::string& ownerAndGroup, const std::string& folder,
                                           const platform::DirectoryAccounts& accounts, FolderHost host);

/// `mode` is octal, from 0 to 777; the folder's higher bits do not change.
[[nodiscard]] platform::Status changeMode(const std::string& mode, const std::string& folder,
                                          FolderHost host);

} // namespace tools
