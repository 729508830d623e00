#pragma once

#include <string>
#include <string_view>

namespace platform {

/// The number of the account nobody, and of its group.
inline constexpr unsigned nobodyNumber = 65534;

/// An account's number as the directory writes it, a signed 32-bit number: one that does not fit becomes
/// negative, and 65534 (nobody) becomes -2.
[[nodiscard]] std::string directoryNumber(unsigned number);
/// Reads such a string. `*valid` receives whether it is a number; if not, returns 0.
[[nodiscard]] unsigned accountNumber(std::string_view text, bool* valid);

} // namespace platform
