#pragma once

#include "platform/posix/Status.h"

#include <string>

/// The helper's kill: sends signal 1 to the process `processId`, which must be a file server: its program is
/// smbd or AppleFileServer. `root` is the embedded root whose servers alone may be signalled; empty on the
/// computer itself.
[[nodiscard]] platform::Status hangUpServer(const std::string& processId, const std::string& root);
