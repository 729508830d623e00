#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// That a control has a value: a menu's selected item by its index, a check box's "on" or "off".
struct ControlHas {
    std::string control;
    std::string value;
};

/// What the attribute `when` of an interface file says: "a=1 b=on or c=2" holds where all of one side do.
[[nodiscard]] std::vector<std::vector<ControlHas>> parseShownWhen(std::string_view text);

} // namespace platform
