#pragma once

#include "review/Plan.h"

#include <string>
#include <vector>

namespace frontend {

/// A plan as a script prints it, a line each. A blocked one has nothing that would be done.
[[nodiscard]] std::vector<std::string> planLines(const review::Plan& plan);

} // namespace frontend
