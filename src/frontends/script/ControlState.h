#pragma once

#include <string>

class NSPopUpButton;

namespace platform {
class Element;
}

namespace frontend {

/// What `element` shows, as the lines that a script's `show` prints, without the last line break. Empty for
/// an element of a kind that shows nothing. A table asks its source for the cells, hence no const.
[[nodiscard]] std::string describeState(platform::Element& element);

/// The items of a pop-up, one line each, without the last line break; empty when it has none.
[[nodiscard]] std::string describeItems(const NSPopUpButton& popUp);

} // namespace frontend
