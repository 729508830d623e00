#pragma once

#include "platform/appkit/Interface.h"
#include "platform/foundation/NSString.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

namespace frontend {

/// Returns the attribute as a number; 0 when there is none.
[[nodiscard]] inline int number(const platform::InterfaceNode& node, std::string_view attribute) {
    return intValue(node.attribute(attribute));
}

/// True when the attribute is "yes".
[[nodiscard]] inline bool isYes(const platform::InterfaceNode& node, std::string_view attribute) {
    return node.attribute(attribute) == "yes";
}

/// Returns the node's model; null when it has none or one of another kind.
template <class Model>
[[nodiscard]] Model* modelOf(const platform::InterfaceNode& node) {
    return dynamic_cast<Model*>(node.element.get());
}

[[nodiscard]] inline bool isOneOf(const platform::InterfaceNode& node,
                                  std::initializer_list<platform::InterfaceKind> kinds) {
    return std::ranges::find(kinds, node.kind) != kinds.end();
}

} // namespace frontend
