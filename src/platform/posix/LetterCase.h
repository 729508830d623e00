#pragma once

#include <string>
#include <string_view>

namespace platform {

/// The text with each capital letter of any script as its small one, character by character. Bytes that are
/// no UTF-8 stay.
[[nodiscard]] std::string lowercased(std::string_view text);

} // namespace platform
