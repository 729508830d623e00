#pragma once

#include "platform/foundation/Services.h"

#include <string_view>

namespace platform {

/// Writes to standard error and to the system's log.
class SystemLog : public Log {
  public:
    /// Each entry becomes one line on standard error, preceded by "brindle: ".
    void write(std::string_view text) override;
};

/// The computer's clock.
class SystemClock : public Clock {
  public:
    [[nodiscard]] double now() const override;
};

} // namespace platform
