#pragma once

#include <string>

namespace platform {

/// Returns the word for a shell command line, quoted where necessary.
[[nodiscard]] std::string shellWord(const std::string& word);

} // namespace platform
