#pragma once

#include "platform/appkit/Element.h"
#include "platform/appkit/RichText.h"

/// A read-only view of styled text inside a scroll view.
class NSTextView : public platform::Element {
  public:
    [[nodiscard]] const platform::RichText& text() const { return text_; }

    /// Puts `text` before what is there, formatting included.
    void insertAtStart(const platform::RichText& text);
    /// The number of characters of the text, in UTF-16 units.
    [[nodiscard]] std::size_t length() const;

    /// The vertical position in the text, in points from its top, of the top of the visible area.
    [[nodiscard]] float scrollPosition() const { return scrollPosition_; }

    /// Scrolls. Emits `scrolled` and not `changed`: a front-end redraws at most once a frame.
    void scrollToPoint(float position);

    void copyState(const Element& from) override;

    platform::Signal<> scrolled;

  private:
    platform::RichText text_;
    float scrollPosition_ = 0;
};
