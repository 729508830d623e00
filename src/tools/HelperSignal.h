#pragma once

#include "platform/posix/Status.h"

#include <string>

namespace tools {

/// The helper's kill: sends signal 1 to the process `processId`, which must be a file server (smbd or
/// AppleFileServer) of the embedded root `root`, or, if `root` is empty, of the computer itself.
[[nodiscard]] platform::Status hangUpServer(const std::string& processId, const std::string& root);

} // namespace tools
