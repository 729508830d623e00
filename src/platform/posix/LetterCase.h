#pragma once

#include <string>
#include <string_view>

namespace platform {

/// The string with each capital letter of any script replaced by its small letter, character by character.
/// Bytes that are no UTF-8 stay.
[[nodiscard]] std::string lowercased(std::string_view text);

} // namespace platform
