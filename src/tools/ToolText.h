#pragma once

#include <string>

namespace tools {

/// `text` as one line with a line break at the end. Other control characters, which quoted text may contain,
/// become "?".
[[nodiscard]] std::string oneLine(std::string text);

} // namespace tools
