#pragma once

#include "platform/posix/Status.h"

#include <string>
#include <vector>

namespace platform {

/// Ok when nobody but root can put another program in the place of the helper at `path`: it, and every folder
/// above it, is root's, and neither group nor others may write there. sudo runs it as root, and so would run
/// whatever they put there. With BRINDLE_DEVELOPMENT=1 in the environment any helper that is there is taken.
[[nodiscard]] Status checkHelperFile(const std::string& path);

/// The folder at the absolute `path` without links, where nobody but root can put anything there or in its
/// place, in the same sense; to be used instead of `path`, whose links may be another's to change. What does
/// not exist yet is judged by the folders above it.
[[nodiscard]] Result<std::string> rootsFolder(const std::string& path);

/// True when BRINDLE_DEVELOPMENT=1 stands in the environment.
[[nodiscard]] bool isDevelopment();

/// The words that start the helper for a session on this computer itself. `prefix` is that of Brindle's own
/// files, for tests.
[[nodiscard]] std::vector<std::string> systemHelperCommand(const std::string& helper,
                                                           const std::string& prefix);

} // namespace platform
