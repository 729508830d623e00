#pragma once

#include "platform/posix/Status.h"

#include <string>

namespace tools {

/// The error message of a tool of the helper in one line: "TOOL: FAILURE\n", or "TOOL: FAILURE; ADVICE\n" for
/// a system error that the user can do something about. Empty for success.
[[nodiscard]] std::string complaint(const std::string& tool, const platform::Status& status);

} // namespace tools
