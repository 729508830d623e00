#pragma once

#include "platform/posix/Status.h"

#include <string>

namespace platform {

/// The settings files that a new root begins with.
[[nodiscard]] std::string sampleSmbConf(const std::string& exampleFolder);
[[nodiscard]] std::string sampleAppleFileServerPlist();

/// Makes the directory's store at `file` (which does not exist) with the records that always exist, and this
/// computer's users and groups. Fails when it cannot be written.
[[nodiscard]] Status makeStore(const std::string& file);

} // namespace platform
