#pragma once

#include "platform/posix/Status.h"

#include <string>

namespace platform {

/// The contents of the settings files of a new root.
[[nodiscard]] std::string sampleSmbConf(const std::string& exampleFolder);
[[nodiscard]] std::string sampleAppleFileServerPlist();

/// Makes the directory's store at `file`, which must not exist. It holds the records that always exist, the
/// people who have accounts on this computer (and root), their groups, and the group admin. Fails when the
/// store cannot be written.
[[nodiscard]] Status makeStore(const std::string& file);

} // namespace platform
