#pragma once

#include "frontends/qt/WindowActions.h"
#include "platform/appkit/Interface.h"

#include <string>

namespace frontend {

/// Returns why the number that a user has typed into the field of `node` is outside its limits. Empty when it
/// is within them, when the field has no limits or is disabled, and for text that the program has filled in.
[[nodiscard]] std::string limitProblem(const platform::InterfaceNode& node);

/// Returns what the user should know about the field's text before pressing a button: its limits, what the
/// button would do to that name, a folder that does not exist. Empty when there is nothing to say. It
/// searches all names, so call it only after a user has typed.
[[nodiscard]] std::string fieldHint(const platform::InterfaceNode& node, const WindowActions& actions);

/// True when the other controls meet the condition in the node's attribute `when`, or when it has none.
[[nodiscard]] bool isShown(const platform::InterfaceNode& node, const WindowActions& actions);

} // namespace frontend
