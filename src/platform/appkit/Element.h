#pragma once

#include "platform/foundation/Signal.h"

#include <string>
#include <utility>

namespace platform {

/// Anything that an interface file makes and a front-end renders: a control, window, tab view or drawer. A
/// plain object with state and a signal; it knows nothing about front-ends. Owned by its Interface (or by a
/// test).
class Element {
  public:
    Element() = default;
    virtual ~Element() = default;
    Element(const Element&) = delete;
    Element& operator=(const Element&) = delete;

    /// The outlet's name, or else the name that the interface file gives it; empty when it has neither.
    [[nodiscard]] const std::string& name() const { return name_; }

    void setName(std::string name) { name_ = std::move(name); }

    /// Copies the state of `from`, the corresponding element of another interface that was made from the same
    /// file. Emits nothing and calls no delegate, because nobody uses the copy yet.
    virtual void copyState(const Element& from) = 0;

    /// Something that a front-end shows has changed. Every setter emits it, so a listener must be cheap: it
    /// marks itself dirty and redraws later. It does not mean that the user did something.
    Signal<> changed;

  protected:
    void didChange() const { changed.emit(); }

  private:
    std::string name_;
};

} // namespace platform
