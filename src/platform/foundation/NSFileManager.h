#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <sys/types.h>

struct NSFileAttributes {
    std::int32_t posixPermissions = 0; ///< the mode's bits below the type: 07777
    uid_t ownerAccountID = 0;
    gid_t groupOwnerAccountID = 0;

    // Looked up when they are asked for, because most callers want the permissions only. None when the id has
    // no name.
    [[nodiscard]] std::optional<std::string> ownerAccountName() const;
    [[nodiscard]] std::optional<std::string> groupOwnerAccountName() const;
};

/// The attributes of what `path` names, symbolic links followed; none when it cannot be examined.
[[nodiscard]] std::optional<NSFileAttributes> fileAttributesAtPath(const std::string& path);

/// A file's bytes, or why there are none.
struct NSFileContents {
    std::optional<std::string> bytes;
    int error = 0; ///< errno of the step that failed; ENOENT for a missing file
};

/// The whole file at `path`, which the host maps.
[[nodiscard]] NSFileContents contentsOfFile(const std::string& path);

/// Writes `bytes` to `path` in one piece: a temporary file beside it, created exclusively with `mode`,
/// flushed to disk and renamed over the target, so that no reader sees half a file and a link at `path` is
/// replaced, not followed. False, with errno set and the target untouched, when a step fails; no temporary
/// file stays.
[[nodiscard]] bool writeToFileAtomically(const std::string& path, std::string_view bytes,
                                         unsigned mode = 0644);

/// Removes a file. False with errno set when that failed.
[[nodiscard]] bool removeFileAtPath(const std::string& path);

/// `path` with a leading "~" or "~/" replaced by the user's home folder.
[[nodiscard]] std::string stringByExpandingTildeInPath(const std::string& path);
/// The folder part and the last component of a path, as dirname and basename would cut them; "" of "".
[[nodiscard]] std::string stringByDeletingLastPathComponent(const std::string& path);
[[nodiscard]] std::string lastPathComponent(const std::string& path);
