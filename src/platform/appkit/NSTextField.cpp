#include "platform/appkit/NSTextField.h"

#include "platform/appkit/Presenter.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSString.h"
#include "platform/posix/Secret.h"

void NSTextField::setStringValue(std::string text) {
    takeText(text);
}

void NSTextField::takeText(std::string& text) {
    if (isSecure()) {
        // Copied, not moved: a moved short text leaves its bytes behind.
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
