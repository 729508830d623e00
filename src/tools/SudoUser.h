#pragma once

#include <optional>

#include <sys/types.h>

/// The user who called sudo; none when sudo did not start this.
[[nodiscard]] std::optional<uid_t> sudoUser();
