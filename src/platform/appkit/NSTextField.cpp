#include "platform/appkit/NSTextField.h"

#include "platform/appkit/Presenter.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSString.h"
#include "platform/posix/Secret.h"
#include "platform/posix/UTF8.h"

#include <algorithm>
#include <string_view>

namespace {

using platform::wipe;

bool continuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80;
}

bool isLineBreak(char32_t character) {
    return (character >= U'\n' && character <= U'\r') || character == 0x85 || character == 0x2028 ||
           character == 0x2029;
}

bool isControl(char32_t character) {
    return character < U' ' || (character >= 0x7F && character < 0xA0);
}

/// `text` as one line: a line break becomes a blank, and other control characters except the tab are left
/// out.
std::string asLine(std::string_view text) {
    std::string line;
    line.reserve(text.size()); // so that growing leaves no copy of a password in memory
    for (std::size_t offset = 0; offset < text.size();) {
        const std::size_t begin = offset;
        const char32_t character = platform::nextCharacter(text, offset);
        if (isLineBreak(character)) {
            line += ' ';
            offset += text.substr(begin).starts_with("\r\n") ? 1 : 0;
        } else if (character == U'\t' || !isControl(character)) {
            line += text.substr(begin, offset - begin);
        }
    }
    return line;
}

/// Turns what `proposed` would add to `text` into one line. The rest stays as it is, because the program may
/// have put in what no user could. Returns how many UTF-16 units shorter `proposed` has become.
std::size_t makeLineOfWhatEnters(std::string_view text, std::string& proposed) {
    const auto differ = std::ranges::mismatch(text, proposed);
    auto begin = static_cast<std::size_t>(differ.in1 - text.begin());
    while (begin > 0 && begin < proposed.size() && continuesCharacter(proposed[begin])) {
        --begin;
    }
    std::size_t end = proposed.size();
    std::size_t textEnd = text.size();
    while (end > begin && textEnd > begin && proposed[end - 1] == text[textEnd - 1]) {
        --end;
        --textEnd;
    }
    while (end < proposed.size() && continuesCharacter(proposed[end])) {
        ++end;
    }
    const std::string_view entered = std::string_view(proposed).substr(begin, end - begin);
    std::string line = asLine(entered);
    const std::size_t shorter = utf16Length(entered) - utf16Length(line);
    proposed.replace(begin, end - begin, line);
    wipe(line); // may hold a password
    return shorter;
}

} // namespace

void NSTextField::setStringValue(std::string text) {
    takeText(text);
}

void NSTextField::takeText(std::string& text) {
    if (isSecure()) {
        // Copied, not moved: moving a short string leaves its bytes in memory.
        platform::wipe(text_);
        text_.assign(text);
        platform::wipe(text);
    } else {
        text_ = std::move(text);
    }
    didChange();
}

void NSTextField::noteTyped() {
    if (!isSecure()) {
        typed_ = text_;
    }
}

void NSTextField::copyState(const Element& from) {
    NSControl::copyState(from);
    const auto& other = dynamic_cast<const NSTextField&>(from);
    text_.assign(other.text_);
    typed_ = other.typed_;
    formatter_ = other.formatter_;
}

void NSTextField::wipeText() {
    platform::wipe(text_);
}

std::int32_t NSTextField::intValue() const {
    return ::intValue(text_);
}

void NSTextField::setIntValue(std::int32_t value) {
    setStringValue(std::to_string(value));
}

bool NSTextField::proposeEdit(std::string proposed, std::size_t proposedCaret, NSRange originalSelection) {
    if (!isEnabled() || !editable_) {
        return false;
    }
    proposedCaret -= std::min(proposedCaret, makeLineOfWhatEnters(text_, proposed));
    if (formatter_) {
        std::string partial = proposed;
        NSRange caret{proposedCaret, 0};
        std::string error;
        if (!formatter_->isPartialStringValid(partial, caret, text_, originalSelection, error)) {
            platform::Host::current().presenter().editWasRefused(*this, error);
            if (delegate_ != nullptr) {
                delegate_->controlDidFailToValidatePartialString(this, proposed, error);
            }
            return false;
        }
    }
    takeText(proposed);
    noteTyped();
    sendAction();
    return true;
}

void NSTextField::performReplace(const std::string& text) {
    const NSRange all{0, utf16Length(stringValue())};
    static_cast<void>(proposeEdit(text, utf16Length(text), all)); // a refusal has been reported already
    endEditing();
}

void NSTextField::endEditing() {
    if (!formatter_ || text_.empty()) {
        return;
    }
    std::string error;
    if (const auto value = formatter_->getObjectValue(text_, error)) {
        if (auto shown = formatter_->stringForObjectValue(*value)) {
            const bool edited = isEdited();
            setStringValue(*std::move(shown));
            if (edited) {
                noteTyped();
            }
        }
    }
}

NSSecureTextField::~NSSecureTextField() {
    wipeText();
}
