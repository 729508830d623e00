#pragma once

#include "platform/posix/Status.h"

#include <span>
#include <string>

/// The helper's service: starts the computer's own SMB server ("smbd start"), or has it start with the
/// computer ("smbd enable"), by systemd where that runs, else by the programs of System V. Anything else is
/// refused. On this computer itself only.
[[nodiscard]] platform::Status controlService(std::span<const std::string> arguments);
