#include "platform/appkit/NSTextView.h"

#include "platform/foundation/NSString.h"

void NSTextView::insertAtStart(const platform::RichText& text) {
    text_.insert(text_.begin(), text.begin(), text.end());
    didChange();
}

std::size_t NSTextView::length() const {
    std::size_t units = 0;
    for (const platform::TextRun& run : text_) {
        units += utf16Length(run.text);
    }
    return units;
}

void NSTextView::copyState(const Element& from) {
    const auto& other = dynamic_cast<const NSTextView&>(from);
    text_ = other.text_;
    scrollPosition_ = other.scrollPosition_;
}

void NSTextView::scrollToPoint(float position) {
    scrollPosition_ = position;
    scrolled.emit();
}
