#pragma once

#include <cstdint>

/// The selector 'sysv': the system's version.
inline constexpr std::uint32_t gestaltSystemVersion = 0x73797376;

/// Puts the host's value for `selector` into `*response` and returns 0. For an unknown selector, returns
/// -5550 and leaves `*response` alone. A version is 0xMMmf in decimal digits: 10.4.0 is 0x1040.
[[nodiscard]] std::int32_t Gestalt(std::uint32_t selector, std::int32_t* response);
