#include "platform/foundation/NSString.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <stdexcept>

namespace {

constexpr std::string_view whiteSpace = " \t\n\v\f\r";

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

char lowered(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool isContinuation(std::string_view text, std::size_t index, unsigned low, unsigned high) {
    if (index >= text.size()) {
        return false;
    }
    const auto byte = static_cast<unsigned char>(text[index]);
    return byte >= low && byte <= high;
}

/// The length in bytes of the well-formed UTF-8 character at `start`, or 0 when there is none.
std::size_t characterLength(std::string_view text, std::size_t start) {
    const auto first = static_cast<unsigned char>(text[start]);
    if (first < 0x80) {
        return 1;
    }
    std::size_t length = 0;
    unsigned low = 0x80;
    unsigned high = 0xBF;
    if (first >= 0xC2 && first <= 0xDF) {
        length = 2;
    } else if (first >= 0xE0 && first <= 0xEF) {
        length = 3;
        low = first == 0xE0 ? 0xA0 : 0x80;  // no overlong forms
        high = first == 0xED ? 0x9F : 0xBF; // no surrogates
    } else if (first >= 0xF0 && first <= 0xF4) {
        length = 4;
        low = first == 0xF0 ? 0x90 : 0x80;
        high = first == 0xF4 ? 0x8F : 0xBF; // nothing above U+10FFFF
    } else {
        return 0;
    }
    if (!isContinuation(text, start + 1, low, high)) {
        return 0;
    }
    for (std::size_t index = 2; index < length; ++index) {
        if (!isContinuation(text, start + index, 0x80, 0xBF)) {
            return 0;
        }
    }
    return length;
}

/// What one step over a text takes: bytes, and the UTF-16 units that they stand for.
struct Step {
    std::size_t bytes;
    std::size_t units;
};

Step stepAt(std::string_view text, std::size_t start) {
    const std::size_t length = characterLength(text, start);
    return {std::max<std::size_t>(length, 1), length == 4 ? std::size_t{2} : std::size_t{1}};
}

} // namespace

std::int32_t intValue(std::string_view text) {
    std::size_t index = std::min(text.find_first_not_of(whiteSpace), text.size());
    bool isNegative = false;
    if (index < text.size() && (text[index] == '-' || text[index] == '+')) {
        isNegative = text[index] == '-';
        ++index;
    }
    using Limits = std::numeric_limits<std::int32_t>;
    std::int64_t value = 0;
    for (; index < text.size() && isDigit(text[index]); ++index) {
        const int digit = text[index] - '0';
        value = value * 10 + (isNegative ? -digit : digit);
        value = std::clamp<std::int64_t>(value, Limits::min(), Limits::max());
    }
    return static_cast<std::int32_t>(value);
}

std::vector<std::string> componentsSeparatedByString(std::string_view text, std::string_view separator) {
    if (separator.empty()) {
        throw std::invalid_argument("a text cannot be cut at an empty separator");
    }
    std::size_t count = 1;
    for (std::size_t place = text.find(separator); place != std::string_view::npos;
         place = text.find(separator, place + separator.size())) {
        ++count;
    }
    std::vector<std::string> pieces;
    pieces.reserve(count);
    std::size_t start = 0;
    while (true) {
        const std::size_t end = text.find(separator, start);
        pieces.emplace_back(text.substr(start, end == std::string_view::npos ? end : end - start));
        if (end == std::string_view::npos) {
            return pieces;
        }
        start = end + separator.size();
    }
}

std::string stringForXML(std::string_view text) {
    constexpr std::string_view lineCharacters = "\t\n\r";
    std::string answer;
    answer.reserve(text.size());
    for (std::size_t index = 0; index < text.size();) {
        const std::size_t length = characterLength(text, index);
        const std::string_view character = text.substr(index, std::max<std::size_t>(length, 1));
        const bool isControl = static_cast<unsigned char>(character.front()) < 0x20 &&
                               lineCharacters.find(character.front()) == std::string_view::npos;
        const bool isNone = length == 0 || character == "\xef\xbf\xbe" || character == "\xef\xbf\xbf";
        answer += isControl || isNone ? std::string_view("\xef\xbf\xbd") : character;
        index += character.size();
    }
    return answer;
}

bool isValidUTF8(std::string_view text) {
    for (std::size_t index = 0; index < text.size();) {
        const std::size_t length = characterLength(text, index);
        if (length == 0) {
            return false;
        }
        index += length;
    }
    return true;
}

std::size_t utf16Length(std::string_view text) {
    std::size_t units = 0;
    for (std::size_t index = 0; index < text.size();) {
        const Step step = stepAt(text, index);
        index += step.bytes;
        units += step.units;
    }
    return units;
}

std::size_t offsetOfUTF16(std::string_view text, std::size_t unit) {
    std::size_t passed = 0;
    std::size_t index = 0;
    while (index < text.size()) {
        const Step step = stepAt(text, index);
        passed += step.units;
        if (passed > unit) {
            return index;
        }
        index += step.bytes;
    }
    return text.size();
}

bool isEqualIgnoringCase(std::string_view left, std::string_view right) {
    return std::ranges::equal(left, right, {}, lowered, lowered);
}

namespace platform {

std::string FormatArgument::rendered(char conversion) const {
    if (!isNumber_) {
        return text_;
    }
    if (conversion != 'o') {
        return std::to_string(number_);
    }
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number_, 8);
    return {digits.data(), end.ptr};
}

std::string formatWithArguments(std::string_view format, std::initializer_list<FormatArgument> arguments) {
    constexpr std::string_view conversions = "@dso";
    std::string result;
    const auto* next = arguments.begin();
    for (std::size_t index = 0; index < format.size(); ++index) {
        const char following = index + 1 < format.size() ? format[index + 1] : '\0';
        if (format[index] != '%' || following == '\0') {
            result += format[index];
        } else if (following == '%') {
            result += '%';
            ++index;
        } else if (conversions.find(following) != std::string_view::npos && next != arguments.end()) {
            result += next->rendered(following);
            ++next;
            ++index;
        } else {
            result += '%';
        }
    }
    return result;
}

} // namespace platform
