#pragma once

#include "platform/posix/Status.h"

#include <string>

namespace platform {

class LocalDomain;

/// Copies the directory's store at `from`, as a reader sees it, to the file `to`, which must not exist. Waits
/// for writers so many seconds. Nothing is flushed to disk: the copy is to be thrown away. Where it fails,
/// `*isUnreadable`, when not null, tells whether `from` cannot be read; otherwise it is `to` that cannot be
/// written.
[[nodiscard]] Status copyStore(const std::string& from, const std::string& to, int waitSeconds,
                               bool* isUnreadable = nullptr);

/// Copies what `domain` shows to the store `to`, which must not exist: accounts that are lines of files
/// become records of it. Waits for writers so many seconds. A domain that has neither store nor files leaves
/// none.
[[nodiscard]] Status copyDirectory(const LocalDomain& domain, const std::string& to, int waitSeconds,
                                   bool* isUnreadable = nullptr);

} // namespace platform
