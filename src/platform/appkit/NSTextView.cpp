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

void NSTextView::scrollToPoint(float position) {
    scrollPosition_ = position;
    scrolled.emit();
}
