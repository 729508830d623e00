#pragma once

#include <cstddef>
#include <string_view>

#include <utf8.h>

namespace platform {

// utfcpp reads and writes UTF-8 (utf8::is_valid, utf8::append). This adds what it lacks: a text may hold
// bytes that are not UTF-8, each of which counts as a character and is passed through.

/// Returns the character of `text` at the byte `offset`, which must lie inside the text, and moves `offset`
/// past it. A byte that is not UTF-8 is returned as U+FFFD, and `offset` moves past that one byte.
[[nodiscard]] inline char32_t nextCharacter(std::string_view text, std::size_t& offset) {
    constexpr char32_t replacement = 0xFFFD;
    constexpr std::size_t longest = 4;
    const std::string_view window = text.substr(offset, longest);
    if (utf8::find_invalid(window) == 0) {
        ++offset;
        return replacement;
    }
    const char* end = window.data();
    const char32_t character = utf8::unchecked::next(end);
    offset += static_cast<std::size_t>(end - window.data());
    return character;
}

} // namespace platform
