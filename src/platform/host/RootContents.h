#pragma once

#include "platform/posix/Status.h"

#include <string>

namespace platform {

/// The settings files that a new root begins with.
[[nodiscard]] std::string sampleSmbConf(const std::string& exampleFolder);
[[nodiscard]] std::string sampleAppleFileServerPlist();

/// Makes the directory's store at `file` (which does not exist) with the records that always exist, and the
/// people who have accounts on this computer, root among them, with their groups and the group admin. Fails
/// when it cannot be written.
[[nodiscard]] Status makeStore(const std::string& file);

} // namespace platform
