#pragma once

#include <string>
#include <string_view>

namespace platform {

/// An account's number as the directory writes it: nobody's 65534 and what 31 bits cannot hold are negative,
/// as -2.
[[nodiscard]] std::string directoryNumber(unsigned number);
/// The number that such a string represents; `*valid` says whether it is one.
[[nodiscard]] unsigned accountNumber(std::string_view text, bool* valid);

} // namespace platform
