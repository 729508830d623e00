#pragma once

#include "platform/foundation/NSString.h"

#include <string_view>

namespace platform {
/// Writes a finished string to the system log of the current host.
void logText(std::string_view text);
/// The same for why something failed that an operation reports only as an alert or a result.
void logExplanation(std::string_view text);
} // namespace platform

/// Writes a line to the system log, formatted as by stringWithFormat. Never give it a secret.
template <class... Arguments>
void NSLog(std::string_view format, const Arguments&... arguments) {
    platform::logText(stringWithFormat(format, arguments...));
}

/// The same for an explanation: a script prints it on standard error, because it is no step of the operation.
template <class... Arguments>
void logReason(std::string_view format, const Arguments&... arguments) {
    platform::logExplanation(stringWithFormat(format, arguments...));
}
