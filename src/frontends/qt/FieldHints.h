#pragma once

#include "frontends/qt/WindowActions.h"
#include "platform/appkit/Interface.h"

#include <string>

/// Why the number that a user has typed into the field of `node` is not within its limits; empty where it is,
/// where the field has none, or is off, and for what the program has filled in.
[[nodiscard]] std::string limitProblem(const platform::InterfaceNode& node);

/// What is to be said of the field's text before any button is pressed: its limits, what the button would do
/// to a name, a folder that is not there; empty where nothing is. Looks at all names, so ask where a user has
/// typed.
[[nodiscard]] std::string fieldHint(const platform::InterfaceNode& node, const WindowActions& actions);

/// Whether what `when` of the node asks of other controls is so; true where it asks nothing.
[[nodiscard]] bool isShown(const platform::InterfaceNode& node, const WindowActions& actions);
