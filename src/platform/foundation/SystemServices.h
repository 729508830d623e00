#pragma once

#include "platform/foundation/Services.h"

#include <string_view>

namespace platform {

/// Writes to standard error, for whoever runs the program, and to the system's log.
class SystemLog : public Log {
  public:
    /// Each entry is one line on standard error, "brindle: " before it.
    void write(std::string_view text) override;
};

/// The computer's clock.
class SystemClock : public Clock {
  public:
    [[nodiscard]] double now() const override;
};

} // namespace platform
