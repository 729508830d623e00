#pragma once

#include "frontends/qt/WidgetBuilder.h"

/// What a widget does with the room that its layout has for it.
enum class Room {
    Own,           ///< keeps its own width: a button as wide as the window is hard to look at
    OfferedInGrid, ///< the same, but as wide as its column in a grid
    Offered,       ///< is as wide as what it stands in
    Beside,        ///< takes all that is left beside it
    All            ///< and below it
};

/// How the window shows one kind of element.
struct WidgetKind {
    platform::InterfaceKind kind;
    QWidget* (WidgetBuilder::*make)(const platform::InterfaceNode& node) =
        nullptr; ///< null: no widget of its own
    Room room = Room::Own;
    bool (*isHigh)(const platform::InterfaceNode& node) = nullptr; ///< see isHigh; null: never
};

/// The node's line in the table of the kinds that stand in a layout (WidgetKinds.cpp); for others one that
/// says nothing.
[[nodiscard]] const WidgetKind& widgetKind(const platform::InterfaceNode& node);

/// Does a label beside the node stand at its top?
[[nodiscard]] bool isHigh(const platform::InterfaceNode& node);
