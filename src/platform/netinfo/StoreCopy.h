#pragma once

#include "platform/posix/Status.h"

#include <string>

namespace platform {

class LocalDomain;

/// Copies the directory's store at `from`, as a reader sees it, to the file `to`, which must not exist. Waits
/// `waitSeconds` for writers. Nothing is flushed to disk, because the copy is temporary. On failure
/// `*isUnreadable` (unless null) says whether `from` cannot be read; if false, `to` cannot be written.
[[nodiscard]] Status copyStore(const std::string& from, const std::string& to, int waitSeconds,
                               bool* isUnreadable = nullptr);

/// Copies what `domain` shows to the store `to`, which must not exist. Accounts that are lines of files
/// become records of the store. Waits and fails as copyStore does. Makes no store for a domain that has
/// neither a store nor files.
[[nodiscard]] Status copyDirectory(const LocalDomain& domain, const std::string& to, int waitSeconds,
                                   bool* isUnreadable = nullptr);

} // namespace platform
