#pragma once

#include "review/Plan.h"

namespace review {

enum class ServerChange { Start, StartAtBoot };

/// Starts the computer's own SMB server now, or has it started whenever the computer starts. Returns false
/// when that failed.
bool changeServer(ServerChange change);
/// The tool run that does it.
[[nodiscard]] PlannedRun serverRun(ServerChange change);

} // namespace review
