#pragma once

#include "frontends/qt/WidgetBuilder.h"

namespace frontend {

/// How a widget uses the room in its layout.
enum class Room {
    Own,           ///< keeps its own width: a button as wide as the window looks wrong
    OfferedInGrid, ///< the same, but is as wide as its column in a grid
    Offered,       ///< is as wide as its parent
    Beside,        ///< takes the remaining room beside it
    All            ///< takes the remaining room beside and below it
};

/// How the window shows one kind of element.
struct WidgetKind {
    platform::InterfaceKind kind;
    QWidget* (WidgetBuilder::*make)(const platform::InterfaceNode& node) =
        nullptr; ///< null when it has no widget of its own
    Room room = Room::Own;
    bool (*isHigh)(const platform::InterfaceNode& node) = nullptr; ///< see isHigh(); null for never
};

/// Returns the node's entry in the table of kinds for layouts (WidgetKinds.cpp); an empty entry for other
/// kinds.
[[nodiscard]] const WidgetKind& widgetKind(const platform::InterfaceNode& node);

/// True when a label beside the node must be aligned with its top.
[[nodiscard]] bool isHigh(const platform::InterfaceNode& node);

} // namespace frontend
