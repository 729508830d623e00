#pragma once

#include "platform/posix/Status.h"

#include <string>

/// Why a tool of the helper could not do what it was asked: "TOOL: FAILURE; ADVICE\n", one line. The advice
/// is what the user can do about a system error. Empty for success.
[[nodiscard]] std::string complaint(const std::string& tool, const platform::Status& status);
