#pragma once

#include <optional>

#include <sys/types.h>

namespace tools {

/// The user who called sudo; none when sudo has not started this program.
[[nodiscard]] std::optional<uid_t> sudoUser();

} // namespace tools
