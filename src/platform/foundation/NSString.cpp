#include "platform/foundation/NSString.h"

#include "platform/posix/UTF8.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <stdexcept>

namespace {

constexpr std::string_view whiteSpace = " \t\n\v\f\r";

char lowered(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

std::size_t utf16Units(char32_t character) {
    return character > 0xFFFF ? 2 : 1;
}

} // namespace

std::int32_t intValue(std::string_view text) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(longLongValue(text), Limits::min(), Limits::max()));
}

std::int64_t longLongValue(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(whiteSpace), text.size()));
    const bool isNegative = text.starts_with('-');
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) {
            return 0;
        }
    }
    std::int64_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        using Limits = std::numeric_limits<std::int64_t>;
        return isNegative ? Limits::min() : Limits::max();
    }
    return value;
}

bool beginsWithInteger(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(whiteSpace), text.size()));
    if (text.starts_with('+') || text.starts_with('-')) {
        text.remove_prefix(1);
    }
    return !text.empty() && text.front() >= '0' && text.front() <= '9';
}

std::vector<std::string> componentsSeparatedByString(std::string_view text, std::string_view separator) {
    if (separator.empty()) {
        throw std::invalid_argument("a string cannot be split at an empty separator");
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
    constexpr std::u32string_view lineCharacters = U"\t\n\r";
    constexpr char32_t replacement = 0xFFFD;
    std::string result;
    result.reserve(text.size());
    for (std::size_t index = 0; index < text.size();) {
        const char32_t character = platform::nextCharacter(text, index);
        const bool isControl =
            character < 0x20 && lineCharacters.find(character) == std::u32string_view::npos;
        const bool isNone = character == 0xFFFE || character == 0xFFFF;
        utf8::append(isControl || isNone ? replacement : character, result);
    }
    return result;
}

bool isValidUTF8(std::string_view text) {
    return utf8::is_valid(text);
}

std::size_t utf16Length(std::string_view text) {
    std::size_t units = 0;
    for (std::size_t index = 0; index < text.size();) {
        units += utf16Units(platform::nextCharacter(text, index));
    }
    return units;
}

std::size_t offsetOfUTF16(std::string_view text, std::size_t unit) {
    std::size_t passed = 0;
    for (std::size_t index = 0; index < text.size();) {
        const std::size_t start = index;
        passed += utf16Units(platform::nextCharacter(text, index));
        if (passed > unit) {
            return start;
        }
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
    std::size_t next = 0;
    for (std::size_t index = 0; index < format.size(); ++index) {
        const std::string_view rest = format.substr(index);
        if (rest.starts_with("%%")) {
            result += '%';
            ++index;
            continue;
        }
        // "%2$@" has the argument's number and "$" between the percent sign and the conversion.
        const bool hasPlace = rest.size() > 3 && rest[1] >= '1' && rest[1] <= '9' && rest[2] == '$';
        const std::size_t place = hasPlace ? static_cast<std::size_t>(rest[1] - '1') : next;
        const std::size_t length = hasPlace ? 4 : 2;
        if (rest.front() != '%' || rest.size() < length || place >= arguments.size() ||
            conversions.find(rest[length - 1]) == std::string_view::npos) {
            result += rest.front();
            continue;
        }
        result += std::data(arguments)[place].rendered(rest[length - 1]);
        next += hasPlace ? 0 : 1;
        index += length - 1;
    }
    return result;
}

} // namespace platform
