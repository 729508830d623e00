#include "platform/foundation/PropertyListText.h"

#include "platform/posix/WholeNumber.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <memory>
#include <utility>

#include <plist/plist.h>
#include <utf8.h>

namespace {

struct FreePlist {
    void operator()(void* plist) const { plist_free(plist); }
};

using Plist = std::unique_ptr<void, FreePlist>;

std::u16string unitsOf(std::string_view bytes, bool isBigEndian) {
    std::u16string units;
    units.reserve(bytes.size() / 2);
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        const auto first = static_cast<unsigned char>(bytes[at]);
        const auto second = static_cast<unsigned char>(bytes[at + 1]);
        units.push_back(static_cast<char16_t>(isBigEndian ? first << 8U | second : second << 8U | first));
    }
    return units;
}

/// A recursive-descent parser of the old form. Each function returns null when the text is malformed.
class OldStyleReader {
  public:
    explicit OldStyleReader(std::string_view text) : text_(text) {}

    Plist read() {
        Plist list = value(0);
        skipBlanks();
        return position_ == text_.size() ? std::move(list) : nullptr;
    }

  private:
    static constexpr int deepest = 100; // levels of nesting, so that a hostile file cannot exhaust the stack

    void skipBlanks() {
        while (true) {
            position_ = std::min(text_.find_first_not_of(" \t\r\n\f\v", position_), text_.size());
            if (text_.substr(position_).starts_with("//")) {
                position_ = std::min(text_.find('\n', position_), text_.size());
            } else if (text_.substr(position_).starts_with("/*")) {
                const std::size_t end = text_.find("*/", position_ + 2);
                position_ = end == std::string_view::npos ? text_.size() : end + 2;
            } else {
                return;
            }
        }
    }

    bool accept(char token) {
        skipBlanks();
        const bool isThere = position_ < text_.size() && text_[position_] == token;
        position_ += isThere ? 1U : 0U;
        return isThere;
    }

    Plist value(int depth) {
        if (depth > deepest) {
            return nullptr;
        }
        if (accept('{')) {
            return dictionary(depth);
        }
        if (accept('(')) {
            return array(depth);
        }
        if (accept('<')) {
            return data();
        }
        const auto text = string();
        return text ? Plist(plist_new_string(text->c_str())) : nullptr;
    }

    Plist dictionary(int depth) {
        Plist result(plist_new_dict());
        while (!accept('}')) {
            const auto key = string();
            Plist item = key && accept('=') ? value(depth + 1) : nullptr;
            if (!item || !accept(';')) {
                return nullptr;
            }
            plist_dict_set_item(result.get(), key->c_str(), item.release());
        }
        return result;
    }

    Plist array(int depth) {
        Plist result(plist_new_array());
        while (!accept(')')) {
            Plist item = value(depth + 1);
            if (!item) {
                return nullptr;
            }
            plist_array_append_item(result.get(), item.release());
            if (!accept(',')) {
                return accept(')') ? std::move(result) : nullptr;
            }
        }
        return result;
    }

    Plist data() {
        std::string bytes;
        while (!accept('>')) {
            const std::string_view digits = text_.substr(position_, 2);
            const auto byte = platform::wholeNumber<unsigned>(digits, 16);
            if (digits.size() != 2 || !byte) {
                return nullptr;
            }
            bytes.push_back(static_cast<char>(*byte));
            position_ += 2;
        }
        return Plist(plist_new_data(bytes.data(), bytes.size()));
    }

    std::optional<std::string> string() {
        if (accept('"')) {
            return quoted();
        }
        constexpr std::string_view unquoted = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
                                              "_$/:.-";
        const std::size_t end = std::min(text_.find_first_not_of(unquoted, position_), text_.size());
        if (end == position_) {
            return std::nullopt;
        }
        const std::size_t start = std::exchange(position_, end);
        return std::string(text_.substr(start, end - start));
    }

    std::optional<std::string> quoted() {
        std::string result;
        while (position_ < text_.size()) {
            const char next = text_[position_++];
            if (next == '"') {
                return result;
            }
            if (next != '\\') {
                result += next;
            } else if (!escape(result)) {
                return std::nullopt;
            }
        }
        return std::nullopt;
    }

    bool escape(std::string& result) {
        if (position_ == text_.size()) {
            return false;
        }
        const char letter = text_[position_];
        if (letter == 'U' || (letter >= '0' && letter <= '7')) {
            return number(result, letter == 'U');
        }
        ++position_;
        constexpr std::string_view letters = "abfnrtv";
        constexpr std::string_view meanings = "\a\b\f\n\r\t\v";
        const std::size_t index = letters.find(letter);
        result += index == std::string_view::npos ? letter : meanings[index];
        return true;
    }

    /// `\Uxxxx`, a UTF-16 unit, or `\ooo`, a character below 256.
    bool number(std::string& result, bool isUnit) {
        position_ += isUnit ? 1U : 0U;
        const std::string_view digits = text_.substr(position_, isUnit ? 4 : 3);
        std::uint32_t character = 0;
        const auto [end, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), character, isUnit ? 16 : 8);
        // libplist ends a string at a NUL, and half of a surrogate pair is not a character.
        if (error != std::errc() || character == 0 || (character >= 0xD800 && character <= 0xDFFF)) {
            return false;
        }
        position_ += static_cast<std::size_t>(end - digits.data());
        utf8::append(character, std::back_inserter(result));
        return true;
    }

    std::string_view text_;
    std::size_t position_ = 0;
};

} // namespace

std::optional<std::string> propertyListTextAsUTF8(std::string_view bytes) {
    using namespace std::string_view_literals;
    constexpr std::string_view mark = "\xef\xbb\xbf";
    if (bytes.starts_with(mark)) {
        return std::string(bytes.substr(mark.size()));
    }
    const bool isMarked = bytes.starts_with("\xfe\xff"sv) || bytes.starts_with("\xff\xfe"sv);
    const bool isBigEndian = bytes.starts_with("\xfe\xff"sv) || bytes.starts_with('\0');
    if (!isMarked && !isBigEndian && !bytes.substr(0, 2).ends_with('\0')) {
        return std::string(bytes);
    }
    const std::u16string units = unitsOf(bytes.substr(isMarked ? 2 : 0), isBigEndian);
    std::string text;
    try {
        utf8::utf16to8(units.begin(), units.end(), std::back_inserter(text));
    } catch (const utf8::exception&) {
        return std::nullopt;
    }
    return text;
}

void* readOldStylePropertyList(std::string_view text) {
    return OldStyleReader(text).read().release();
}
