#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The integer that a text begins with: optional white space, an optional sign, decimal digits up to the
/// first other character. No digits read as 0. Saturates at the bounds of 32 bits.
[[nodiscard]] std::int32_t intValue(std::string_view text);
/// The same, saturating at the bounds of 64 bits.
[[nodiscard]] std::int64_t longLongValue(std::string_view text);
/// Whether the text begins with such an integer: one that does not reads as 0 all the same.
[[nodiscard]] bool beginsWithInteger(std::string_view text);

/// `text` cut at every `separator` (not empty): n separators give n + 1 pieces, empty ones included. Read a
/// piece with `.at()`, so that an unexpected text raises std::out_of_range.
[[nodiscard]] std::vector<std::string> componentsSeparatedByString(std::string_view text,
                                                                   std::string_view separator);

/// True when `text` is well-formed UTF-8.
[[nodiscard]] bool isValidUTF8(std::string_view text);
/// The text as an XML document can hold it: control characters but tab and line ends, U+FFFE, U+FFFF and
/// bytes that are no UTF-8 become U+FFFD (https://www.w3.org/TR/xml/#charsets).
[[nodiscard]] std::string stringForXML(std::string_view text);

/// The number of UTF-16 units that `text` takes. A byte that is not UTF-8 counts as one.
[[nodiscard]] std::size_t utf16Length(std::string_view text);

/// The byte offset in `text` at which its UTF-16 unit `unit` begins; the text's size when it is shorter.
[[nodiscard]] std::size_t offsetOfUTF16(std::string_view text, std::size_t unit);

/// True when both are equal but for the case of ASCII letters.
[[nodiscard]] bool isEqualIgnoringCase(std::string_view left, std::string_view right);

namespace platform {

/// One value for a format: a text, a number, or a missing text, which shows as "(null)".
class FormatArgument {
  public:
    FormatArgument(std::string text) : text_(std::move(text)) {}

    FormatArgument(std::string_view text) : text_(text) {}

    FormatArgument(const char* text) : text_(text) {}

    FormatArgument(const std::optional<std::string>& text) : text_(text ? *text : "(null)") {}

    template <std::integral T>
    FormatArgument(T number) : number_(static_cast<long long>(number)), isNumber_(true) {}

    [[nodiscard]] std::string rendered(char conversion) const;

  private:
    std::string text_;
    long long number_ = 0;
    bool isNumber_ = false;
};

[[nodiscard]] std::string formatWithArguments(std::string_view format,
                                              std::initializer_list<FormatArgument> arguments);

} // namespace platform

/// `format` with each "%@", "%d", "%s" and "%o" (octal) replaced by the next argument and "%%" by a percent
/// sign. "%2$@" is replaced by the second argument, for a language that has its words in another order, and
/// does not count for the next one. Arguments that are not used are ignored; a directive without an argument,
/// or an unknown one, stays as it is.
template <class... Arguments>
[[nodiscard]] std::string stringWithFormat(std::string_view format, const Arguments&... arguments) {
    return platform::formatWithArguments(format, {platform::FormatArgument(arguments)...});
}
