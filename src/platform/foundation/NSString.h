#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The integer at the start of `text`: optional white space, an optional sign, and decimal digits up to the
/// first other character. 0 when there are no digits. Saturates at the bounds of 32 bits.
[[nodiscard]] std::int32_t intValue(std::string_view text);
/// The same, saturating at the bounds of 64 bits.
[[nodiscard]] std::int64_t longLongValue(std::string_view text);
/// Whether `text` begins with such an integer. The functions above return 0 for text that does not.
[[nodiscard]] bool beginsWithInteger(std::string_view text);

/// Splits `text` at every `separator` (which must not be empty): n separators give n + 1 pieces, empty ones
/// included. Read a piece with `.at()`, so that unexpected text raises std::out_of_range.
[[nodiscard]] std::vector<std::string> componentsSeparatedByString(std::string_view text,
                                                                   std::string_view separator);

/// True when `text` is well-formed UTF-8.
[[nodiscard]] bool isValidUTF8(std::string_view text);
/// `text` as an XML document can hold it: control characters except tabs and line ends, U+FFFE, U+FFFF and
/// bytes that are not UTF-8 become U+FFFD (https://www.w3.org/TR/xml/#charsets).
[[nodiscard]] std::string stringForXML(std::string_view text);

/// The number of UTF-16 units that `text` takes. A byte that is not UTF-8 counts as one.
[[nodiscard]] std::size_t utf16Length(std::string_view text);

/// The byte offset in `text` at which its UTF-16 unit number `unit` begins; the text's size when it is
/// shorter.
[[nodiscard]] std::size_t offsetOfUTF16(std::string_view text, std::size_t unit);

/// True when both are equal apart from the case of ASCII letters.
[[nodiscard]] bool isEqualIgnoringCase(std::string_view left, std::string_view right);

namespace platform {

/// One argument of a format: a string, a number, or a missing string, which shows as "(null)".
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
/// sign. "%2$@" is replaced by the second argument, for languages with another word order; it does not change
/// which argument the next "%@" takes. Arguments that are not used are ignored; a directive without an
/// argument, or an unknown one, stays as it is.
template <class... Arguments>
[[nodiscard]] std::string stringWithFormat(std::string_view format, const Arguments&... arguments) {
    return platform::formatWithArguments(format, {platform::FormatArgument(arguments)...});
}
