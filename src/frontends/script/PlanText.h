#pragma once

#include "review/Plan.h"

#include <string>
#include <vector>

namespace frontend {

/// Returns the line for a run that would be made.
[[nodiscard]] std::string runLine(const review::PlannedRun& run);

/// Returns the lines that a script prints for a plan. A blocked plan lists nothing that would be done.
[[nodiscard]] std::vector<std::string> planLines(const review::Plan& plan);

} // namespace frontend
