#pragma once

#include <cstdint>

/// The selector 'sysv': the system's version.
inline constexpr std::uint32_t gestaltSystemVersion = 0x73797376;

/// Puts the host's value for `selector` into `*response` and returns 0. Returns an error (-5550: unknown
/// selector) and leaves `*response` alone otherwise. A version is 0xMMmf in decimal digits: 10.4.0 is 0x1040.
[[nodiscard]] std::int32_t Gestalt(std::uint32_t selector, std::int32_t* response);
