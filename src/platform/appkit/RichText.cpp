#include "platform/appkit/RichText.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <utility>

#include <utf8.h>

namespace platform {

namespace {

/// Windows-1252 from 0x80 to 0x9F; the rest of that page is Latin-1. 0 where the page has no character.
constexpr std::array<char32_t, 32> windows1252 = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

/// Groups that hold no text of the document.
constexpr std::array<std::string_view, 12> destinations = {
    "fonttbl", "colortbl", "stylesheet", "info",      "pict",    "object",
    "header",  "footer",   "footnote",   "listtable", "rsidtbl", "generator"};

std::string utf8Text(char32_t character) {
    std::string text;
    utf8::append(character, text);
    return text;
}

int hexValue(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    const char lower = static_cast<char>(digit | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

bool isLetter(char character) {
    const char lower = static_cast<char>(character | 0x20);
    return lower >= 'a' && lower <= 'z';
}

/// Reads one RTF text from start to end: tokens become styled runs, and the end of a group restores the style
/// from before it.
class Reader {
  public:
    explicit Reader(std::string_view rtf) : rtf_(rtf) {}

    std::optional<RichText> read() {
        if (!rtf_.starts_with("{\\rtf")) {
            return std::nullopt;
        }
        do {
            if (at_ >= rtf_.size()) {
                return std::nullopt; // a group is still open
            }
            readToken();
        } while (!groups_.empty());
        return std::move(text_);
    }

  private:
    struct State {
        TextRun style; ///< its text stays empty
        bool skipped = false;
        int charactersAfterUnicode = 1;
    };

    void readToken() {
        const char character = rtf_[at_++];
        switch (character) {
        case '{':
            groups_.push_back(state_);
            break;
        case '}':
            state_ = std::move(groups_.back());
            groups_.pop_back();
            break;
        case '\\':
            readControl();
            break;
        case '\r':
        case '\n':
            break; // line breaks only lay out the file itself
        default:
            addByte(static_cast<unsigned char>(character));
        }
    }

    /// A character of the code page.
    void addByte(char32_t byte) {
        const bool special = byte >= 0x80 && byte < 0xA0;
        const char32_t character = special ? windows1252.at(byte - 0x80) : byte;
        addFallback(utf8Text(character == 0 ? 0xFFFD : character));
    }

    void readControl() {
        if (at_ >= rtf_.size()) {
            return;
        }
        if (isLetter(rtf_[at_])) {
            readWord();
            return;
        }
        const char symbol = rtf_[at_++];
        switch (symbol) {
        case '\\':
        case '{':
        case '}':
            addFallback({&symbol, 1});
            break;
        case '\'':
            readByte();
            break;
        case '*':
            state_.skipped = true;
            break;
        case '~':
            addFallback(utf8Text(0xA0));
            break;
        case '_':
            addFallback(utf8Text(0x2011));
            break;
        case '\r':
        case '\n':
            add("\n"); // an escaped line end ends a paragraph
            break;
        default:
            break;
        }
    }

    void readByte() {
        if (rtf_.size() - at_ < 2) {
            at_ = rtf_.size();
            return;
        }
        const int high = hexValue(rtf_[at_]);
        const int low = hexValue(rtf_[at_ + 1]);
        at_ += 2;
        if (high < 0 || low < 0) {
            return;
        }
        addByte(static_cast<char32_t>(high * 16 + low));
    }

    void readWord() {
        const std::size_t begin = at_;
        while (at_ < rtf_.size() && isLetter(rtf_[at_])) {
            ++at_;
        }
        const std::string_view word = rtf_.substr(begin, at_ - begin);
        std::optional<int> number;
        int parsed = 0;
        const auto [end, error] = std::from_chars(rtf_.data() + at_, rtf_.data() + rtf_.size(), parsed);
        if (error == std::errc()) {
            number = parsed;
        }
        at_ = static_cast<std::size_t>(end - rtf_.data());
        if (at_ < rtf_.size() && rtf_[at_] == ' ') {
            ++at_; // the blank after a word is part of it
        }
        applyWord(word, number);
    }

    void applyWord(std::string_view word, std::optional<int> number) {
        if (word == "b") {
            state_.style.bold = number != 0;
        } else if (word == "i") {
            state_.style.italic = number != 0;
        } else if (word == "fs") {
            state_.style.size = number && *number > 0 ? *number / 2.0 : TextRun().size;
        } else if (word == "plain") {
            const TextAlignment alignment = state_.style.alignment;
            state_.style = TextRun();
            state_.style.alignment = alignment;
        } else if (word == "pard" || word == "ql") {
            state_.style.alignment = TextAlignment::Left;
        } else if (word == "qc") {
            state_.style.alignment = TextAlignment::Center;
        } else if (word == "qr") {
            state_.style.alignment = TextAlignment::Right;
        } else if (word == "par" || word == "line") {
            add("\n");
        } else if (word == "tab") {
            add("\t");
        } else if (word == "uc") {
            state_.charactersAfterUnicode = number.value_or(1);
        } else if (word == "u") {
            addUnicode(number.value_or(0xFFFD));
        } else {
            for (const std::string_view destination : destinations) {
                state_.skipped = state_.skipped || word == destination;
            }
        }
    }

    /// `unit` is a signed 16-bit UTF-16 unit; the two units of a surrogate pair are joined.
    void addUnicode(int unit) {
        const auto value = static_cast<char32_t>(static_cast<std::uint16_t>(unit));
        toSkip_ = state_.charactersAfterUnicode;
        if (value >= 0xD800 && value < 0xDC00) {
            highSurrogate_ = value;
            return;
        }
        const char32_t high = std::exchange(highSurrogate_, 0);
        const bool low = value >= 0xDC00 && value < 0xE000;
        if (low && high == 0) {
            add(utf8Text(0xFFFD));
        } else {
            add(utf8Text(low ? 0x10000 + ((high - 0xD800) << 10) + (value - 0xDC00) : value));
        }
    }

    /// Adds text, unless it is the substitute after a \u word for readers that do not know that word.
    void addFallback(std::string_view text) {
        if (toSkip_ > 0) {
            --toSkip_;
            return;
        }
        add(text);
    }

    void add(std::string_view text) {
        if (state_.skipped) {
            return;
        }
        const TextRun& style = state_.style;
        if (text_.empty() || text_.back().bold != style.bold || text_.back().italic != style.italic ||
            text_.back().size != style.size || text_.back().alignment != style.alignment) {
            text_.push_back(style);
        }
        text_.back().text += text;
    }

    std::string_view rtf_;
    std::size_t at_ = 0;
    State state_;
    std::vector<State> groups_;
    RichText text_;
    int toSkip_ = 0;
    char32_t highSurrogate_ = 0;
};

} // namespace

std::optional<RichText> readRichText(std::string_view rtf) {
    return Reader(rtf).read();
}

} // namespace platform
