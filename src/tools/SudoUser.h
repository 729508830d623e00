#pragma once

#include <optional>

#include <sys/types.h>

/// The user who called sudo; none when sudo has not started this program.
[[nodiscard]] std::optional<uid_t> sudoUser();
