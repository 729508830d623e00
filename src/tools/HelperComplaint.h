#pragma once

#include "platform/posix/Status.h"

#include <string>

namespace tools {

/// The error message of a tool of the helper in one line: "TOOL: FAILURE; ADVICE\n". The advice says what the
/// user can do about a system error. Empty for success.
[[nodiscard]] std::string complaint(const std::string& tool, const platform::Status& status);

} // namespace tools
