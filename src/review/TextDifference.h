#pragma once

#include "review/Plan.h"

#include <string_view>
#include <vector>

namespace review {

/// The lines of `text`, without their line breaks. What follows the last line break is a line unless it is
/// empty.
[[nodiscard]] std::vector<std::string_view> linesOf(std::string_view text);

/// The smallest set of lines that are removed from `before` and added in `after`, in order; at the same
/// place, removals come first. For texts that differ almost everywhere the set may not be the smallest.
[[nodiscard]] std::vector<LineChange> lineChanges(const std::vector<std::string_view>& before,
                                                  const std::vector<std::string_view>& after);

} // namespace review
