#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// The condition that a control has a value: for a menu the index of the selected item, for a check box "on"
/// or "off".
struct ControlHas {
    std::string control;
    std::string value;
};

/// Parses the attribute `when` of an interface file. "a=1 b=on or c=2" is true when every condition on one
/// side of an "or" is true; returns one list for each side.
[[nodiscard]] std::vector<std::vector<ControlHas>> parseShownWhen(std::string_view text);

} // namespace platform
