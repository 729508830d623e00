#pragma once

#include <string>
#include <string_view>

namespace platform {

/// `text` with each capital letter of any script replaced by its small letter, character by character. Bytes
/// that are not UTF-8 stay as they are.
[[nodiscard]] std::string lowercased(std::string_view text);

} // namespace platform
