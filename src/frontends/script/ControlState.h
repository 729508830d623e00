#pragma once

#include <string>

class NSPopUpButton;

namespace platform {
struct InterfaceNode;
}

namespace frontend {

/// Returns the state of the model of `node` as the lines that a script's `show` prints, without the last line
/// break.
[[nodiscard]] std::string describeState(const platform::InterfaceNode& node);

/// Returns the items of a pop-up, one line each, without the last line break; empty when it has none.
[[nodiscard]] std::string describeItems(const NSPopUpButton& popUp);

} // namespace frontend
