#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include <utf8.h>

namespace platform {

// UTF-8 is read and written by utfcpp (utf8::is_valid, utf8::append). What it leaves to us: a text may hold
// bytes that are no UTF-8, and they pass through.

/// A step over a text: a character, or one byte that is no UTF-8.
struct UTF8Step {
    std::size_t bytes = 1;
    std::optional<char32_t> character; ///< none for such a byte
};

/// The step at the start of `text`, which is not empty.
[[nodiscard]] inline UTF8Step firstUTF8Step(std::string_view text) {
    constexpr std::size_t longest = 4;
    const std::string_view window = text.substr(0, longest);
    if (utf8::find_invalid(window) == 0) {
        return {};
    }
    const char* end = window.data();
    const char32_t character = utf8::unchecked::next(end);
    return {static_cast<std::size_t>(end - window.data()), character};
}

} // namespace platform
