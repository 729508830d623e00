#pragma once

#include "review/Plan.h"

#include <string_view>
#include <vector>

namespace review {

/// The lines of `text`; what follows the last line break is a line unless it is empty.
[[nodiscard]] std::vector<std::string_view> linesOf(std::string_view text);

/// The fewest lines that go from `before` and come to `after`, in the files' order; where both happen at one
/// place, what goes stands first. Texts that differ almost everywhere may get more lines than the fewest.
[[nodiscard]] std::vector<LineChange> lineChanges(const std::vector<std::string_view>& before,
                                                  const std::vector<std::string_view>& after);

} // namespace review
