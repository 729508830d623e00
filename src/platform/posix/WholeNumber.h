#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace platform {

/// The number that `text` is written as, in digits of that base; none when it holds anything else or the
/// number does not fit.
template <class Number>
[[nodiscard]] std::optional<Number> wholeNumber(std::string_view text, int base = 10) {
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

} // namespace platform
