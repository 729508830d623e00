#pragma once

#include "platform/posix/Status.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <sys/types.h>

// The operations on files take paths as the application knows them: the host maps each (Paths::map), so that
// the two settings files are read, written and removed where the host keeps them.

struct NSFileAttributes {
    std::int32_t posixPermissions = 0; ///< the mode's bits below the type: 07777
    uid_t ownerAccountID = 0;
    gid_t groupOwnerAccountID = 0;

    // Looked up at each call, because most callers want only the permissions. None when the id has no name.
    [[nodiscard]] std::optional<std::string> ownerAccountName() const;
    [[nodiscard]] std::optional<std::string> groupOwnerAccountName() const;
};

/// The attributes of the file or folder at `path`, with symbolic links followed; none when it cannot be
/// examined.
[[nodiscard]] std::optional<NSFileAttributes> fileAttributesAtPath(const std::string& path);

/// The contents of the file at `path`. systemError() is ENOENT for a missing file.
[[nodiscard]] platform::Result<std::string> contentsOfFile(const std::string& path);

/// Writes `bytes` to `path` in one piece (see posix/WholeFile.h): no reader sees half a file, and a link at
/// `path` is replaced, not followed. `mode` is for a new file. On failure the file is unchanged.
[[nodiscard]] platform::Status writeToFileAtomically(const std::string& path, std::string_view bytes,
                                                     unsigned mode = 0644);

/// Removes a file.
[[nodiscard]] platform::Status removeFileAtPath(const std::string& path);

/// `path` with a leading "~" or "~/" replaced by the user's home folder.
[[nodiscard]] std::string stringByExpandingTildeInPath(const std::string& path);
/// The folder part and the last component of a path, as dirname and basename return them; "" for "".
[[nodiscard]] std::string stringByDeletingLastPathComponent(const std::string& path);
[[nodiscard]] std::string lastPathComponent(const std::string& path);
