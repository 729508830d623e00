#pragma once

#include "platform/posix/Status.h"

#include <string>
#include <vector>

namespace platform {

/// Ok when nobody but root can replace the helper at `path`: it and every folder above it belong to root, and
/// neither group nor others may write there. Otherwise somebody else could have sudo run another program as
/// root. With BRINDLE_DEVELOPMENT=1 in the environment any executable helper is accepted.
[[nodiscard]] Status checkHelperFile(const std::string& path);

/// Returns the absolute `path` with links resolved. Fails when anybody but root can change or replace that
/// folder, in the same sense. Use the result instead of `path`, because others may be able to change the
/// links in `path`. A folder that does not exist yet is judged by the folders above it.
[[nodiscard]] Result<std::string> rootsFolder(const std::string& path);

/// True when BRINDLE_DEVELOPMENT=1 is set in the environment.
[[nodiscard]] bool isDevelopment();

/// The command that starts the helper on this computer itself. `prefix` is that of Brindle's
/// own files (SystemFiles), for tests.
[[nodiscard]] std::vector<std::string> systemHelperCommand(const std::string& helper,
                                                           const std::string& prefix);

} // namespace platform
