#pragma once

#include "platform/posix/Status.h"

#include <span>
#include <string>
#include <vector>

namespace tools {

/// The helper's service: starts the computer's own SMB server ("smbd start"), or makes it start with the
/// computer ("smbd enable"), with systemd if that is running, otherwise with the System V programs. Anything
/// else is refused.
[[nodiscard]] platform::Status controlService(std::span<const std::string> arguments);

/// The command that does this. `computer` is the folder below which the computer's files lie, "" for this
/// computer.
[[nodiscard]] std::vector<std::string> serviceCommand(bool isStart, const std::string& computer = {});

} // namespace tools
