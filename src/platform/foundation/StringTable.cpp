#include "platform/foundation/StringTable.h"

#include "platform/foundation/NSString.h"
#include "platform/posix/WholeNumber.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include <utf8.h>

namespace platform {

namespace {

constexpr std::uint32_t firstHighSurrogate = 0xD800;
constexpr std::uint32_t firstLowSurrogate = 0xDC00;
constexpr std::uint32_t afterSurrogates = 0xE000;

/// Ends the reading of a table; never leaves this file.
struct Fault {
    std::string why;
};

class Reader {
  public:
    explicit Reader(std::string_view bytes) : bytes_(bytes) {}

    StringTable read() {
        StringTable table;
        accept("\xEF\xBB\xBF");
        for (skipSpace(); position_ < bytes_.size(); skipSpace()) {
            std::string key = quoted("a key in double quotes");
            expect("=", "\"=\" after the key");
            std::string value = quoted("a text in double quotes after \"=\"");
            expect(";", "\";\" after the text");
            table.emplace(std::move(key), std::move(value));
        }
        return table;
    }

  private:
    [[noreturn]] void fail(std::string_view expected) const {
        const auto line =
            1 + std::count(bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(position_), '\n');
        throw Fault{"line " + std::to_string(line) + ": expected " + std::string(expected)};
    }

    bool accept(std::string_view token) {
        if (!bytes_.substr(position_).starts_with(token)) {
            return false;
        }
        position_ += token.size();
        return true;
    }

    void expect(std::string_view token, std::string_view description) {
        skipSpace();
        if (!accept(token)) {
            fail(description);
        }
    }

    void skipSpace() {
        while (true) {
            position_ = std::min(bytes_.find_first_not_of(" \t\r\n", position_), bytes_.size());
            if (accept("//")) {
                position_ = std::min(bytes_.find('\n', position_), bytes_.size());
            } else if (bytes_.substr(position_).starts_with("/*")) {
                const std::size_t end = bytes_.find("*/", position_ + 2);
                if (end == std::string_view::npos) {
                    fail("\"*/\" at the end of the comment that begins here");
                }
                position_ = end + 2;
            } else {
                return;
            }
        }
    }

    std::string quoted(std::string_view description) {
        expect("\"", description);
        const std::size_t start = position_;
        std::string text;
        while (true) {
            const std::size_t end = endOfPlainText();
            if (end == bytes_.size()) {
                position_ = start;
                fail("a double quote at the end of the text that begins here");
            }
            text.append(bytes_.substr(position_, end - position_));
            position_ = end + 1;
            if (bytes_[end] == '"') {
                return text;
            }
            readEscape(text);
        }
    }

    /// Where the next quote or backslash is; the end of the table if there is none.
    [[nodiscard]] std::size_t endOfPlainText() const {
        const auto isSpecial = [](char character) { return character == '"' || character == '\\'; };
        return static_cast<std::size_t>(
            std::find_if(bytes_.begin() + static_cast<std::ptrdiff_t>(position_), bytes_.end(), isSpecial) -
            bytes_.begin());
    }

    void readEscape(std::string& text) {
        constexpr std::string_view letters = "\"\\'ntr";
        constexpr std::string_view meanings = "\"\\'\n\t\r";
        if (accept("U")) {
            utf8::append(static_cast<char32_t>(readCharacter()), text);
            return;
        }
        const std::size_t index =
            position_ < bytes_.size() ? letters.find(bytes_[position_]) : std::string_view::npos;
        if (index == std::string_view::npos) {
            fail(R"(one of \" \\ \n \t \r \Uxxxx after the backslash)");
        }
        text += meanings[index];
        ++position_;
    }

    /// A character outside the basic plane is written as two escapes, one for each UTF-16 unit.
    std::uint32_t readCharacter() {
        const std::uint32_t unit = readUnit();
        if (unit < firstHighSurrogate || unit >= afterSurrogates) {
            return unit;
        }
        const bool hasSecond = unit < firstLowSurrogate && accept("\\U");
        const std::uint32_t second = hasSecond ? readUnit() : 0;
        if (second < firstLowSurrogate || second >= afterSurrogates) {
            fail("two surrogates that belong together");
        }
        return 0x10000 + ((unit - firstHighSurrogate) << 10U) + (second - firstLowSurrogate);
    }

    std::uint32_t readUnit() {
        constexpr std::size_t digits = 4;
        const std::string_view text = bytes_.substr(position_, digits);
        const auto unit = wholeNumber<std::uint32_t>(text, 16);
        if (text.size() != digits || !unit) {
            fail("four hexadecimal digits after \\U");
        }
        position_ += digits;
        return *unit;
    }

    std::string_view bytes_;
    std::size_t position_ = 0;
};

} // namespace

Result<StringTable> readStringTable(std::string_view bytes) {
    constexpr const char* what = "cannot read the string table";
    if (!isValidUTF8(bytes)) {
        return Status::failure(what, {}, "the file is not UTF-8: save it in that encoding");
    }
    try {
        return Reader(bytes).read();
    } catch (const Fault& fault) {
        return Status::failure(what, {}, fault.why);
    }
}

} // namespace platform
