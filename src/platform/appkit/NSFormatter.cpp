#include "platform/appkit/NSFormatter.h"

#include "platform/posix/UTF8.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace {

/// The character for 0 in every script with decimal digits (Unicode 15, category Nd); 1 to 9 follow each.
constexpr char32_t zeros[] = {
    0x0030,  0x0660,  0x06F0,  0x07C0,  0x0966,  0x09E6,  0x0A66,  0x0AE6,  0x0B66,  0x0BE6,
    0x0C66,  0x0CE6,  0x0D66,  0x0DE6,  0x0E50,  0x0ED0,  0x0F20,  0x1040,  0x1090,  0x17E0,
    0x1810,  0x1946,  0x19D0,  0x1A80,  0x1A90,  0x1B50,  0x1BB0,  0x1C40,  0x1C50,  0xA620,
    0xA8D0,  0xA900,  0xA9D0,  0xA9F0,  0xAA50,  0xABF0,  0xFF10,  0x104A0, 0x10D30, 0x11066,
    0x110F0, 0x11136, 0x111D0, 0x112F0, 0x11450, 0x114D0, 0x11650, 0x116C0, 0x11730, 0x118E0,
    0x11950, 0x11C50, 0x11D50, 0x11DA0, 0x11F50, 0x16A60, 0x16AC0, 0x16B50, 0x1D7CE, 0x1D7D8,
    0x1D7E2, 0x1D7EC, 0x1D7F6, 0x1E140, 0x1E2F0, 0x1E4F0, 0x1E950, 0x1FBF0,
};

} // namespace

bool NSFormatter::isPartialStringValid(std::string& partial, NSRange&, const std::string&, NSRange,
                                       std::string& error) {
    std::optional<std::string> replacement;
    const bool accepted = isPartialStringValid(partial, replacement, error);
    if (!accepted && replacement) {
        partial = *std::move(replacement);
    }
    return accepted;
}

bool NSFormatter::isPartialStringValid(const std::string&, std::optional<std::string>&, std::string&) {
    return true;
}

std::optional<NSObjectValue> NSFormatter::getObjectValue(const std::string& text, std::string&) const {
    return text;
}

std::optional<std::string> NSFormatter::stringForObjectValue(const NSObjectValue& value) const {
    if (const auto* number = std::get_if<std::int64_t>(&value)) {
        return std::to_string(*number);
    }
    return std::get<std::string>(value);
}

namespace platform {

std::optional<int> decimalDigitValue(char32_t character) {
    const auto* after = std::upper_bound(std::begin(zeros), std::end(zeros), character);
    if (after == std::begin(zeros) || character - *std::prev(after) > 9) {
        return std::nullopt;
    }
    return static_cast<int>(character - *std::prev(after));
}

} // namespace platform

void NSNumberFormatter::setFormat(const std::string& format) {
    if (format != "##0") {
        throw std::invalid_argument("the number format \"" + format + "\" is not known: use \"##0\"");
    }
}

std::optional<NSObjectValue> NSNumberFormatter::getObjectValue(const std::string& text,
                                                               std::string& error) const {
    std::size_t offset = text.starts_with('-') ? 1 : 0;
    std::string number = text.substr(0, offset);
    bool isNumber = offset < text.size();
    while (isNumber && offset < text.size()) {
        const auto digit = platform::decimalDigitValue(platform::nextCharacter(text, offset));
        isNumber = digit.has_value();
        number += std::to_string(digit.value_or(0));
    }
    std::int64_t value = 0;
    if (!isNumber || std::from_chars(number.data(), number.data() + number.size(), value).ec != std::errc()) {
        error = "\"" + text + "\" is not a whole number of at most 64 bits";
        return std::nullopt;
    }
    return value;
}

std::optional<std::string> NSNumberFormatter::stringForObjectValue(const NSObjectValue& value) const {
    if (const auto* number = std::get_if<std::int64_t>(&value)) {
        return std::to_string(*number);
    }
    return std::nullopt;
}
