#pragma once

#include "platform/posix/Status.h"

#include <span>
#include <string>
#include <vector>

/// The helper's service: starts the computer's own SMB server ("smbd start"), or has it start with the
/// computer ("smbd enable"), by systemd where that runs, else by the programs of System V. Anything else is
/// refused. On this computer itself only.
[[nodiscard]] platform::Status controlService(std::span<const std::string> arguments);

/// The words of the program that does it: systemd's where that runs, else System V's. `computer` is where the
/// computer's files lie, "" for this one.
[[nodiscard]] std::vector<std::string> serviceCommand(bool isStart, const std::string& computer = {});
