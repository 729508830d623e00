#pragma once

#include "platform/posix/Status.h"

#include <string>

namespace platform {

/// Copies the directory's store at `from`, as a reader sees it, to the file `to`, which must not exist. Waits
/// for writers so many seconds. Nothing is flushed to disk: the copy is to be thrown away.
[[nodiscard]] Status copyStore(const std::string& from, const std::string& to, int waitSeconds);

} // namespace platform
