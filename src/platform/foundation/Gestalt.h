#pragma once

#include <cstdint>

/// The selector 'sysv' of the system's version.
inline constexpr std::uint32_t gestaltSystemVersion = 0x73797376;

/// Puts the host's answer for `selector` into `*response` and answers 0, or answers an error (-5550, an
/// unknown selector) and leaves it. A version is decimal digits 0xMMmf: 10.4.0 is 0x1040.
[[nodiscard]] std::int32_t Gestalt(std::uint32_t selector, std::int32_t* response);
