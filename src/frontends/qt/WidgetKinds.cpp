#include "frontends/qt/WidgetKinds.h"

#include "frontends/qt/NodeAttributes.h"
#include "platform/appkit/InterfaceTable.h"

#include <algorithm>
#include <array>

namespace frontend {

using Kind = platform::InterfaceKind;
using platform::InterfaceNode;

namespace {

bool always(const InterfaceNode& /*node*/) {
    return true;
}

bool withSeveralRows(const InterfaceNode& node) {
    return number(node, "rows") > 1;
}

bool withSuchAChild(const InterfaceNode& node) {
    return std::ranges::any_of(node.children, [](const auto& child) { return isHigh(*child); });
}

} // namespace

struct WidgetKinds {
    static constexpr auto lines = std::to_array<WidgetKind>({
        {Kind::Column, &WidgetBuilder::makeLayoutWidget, Room::Offered, always},
        {Kind::Row, &WidgetBuilder::makeLayoutWidget, Room::Offered, withSuchAChild},
        {Kind::Grid, &WidgetBuilder::makeLayoutWidget, Room::Offered, always},
        {Kind::Box, &WidgetBuilder::makeBox, Room::Beside},
        {Kind::Spacer, nullptr, Room::Beside},
        {Kind::Separator, &WidgetBuilder::makeSeparator, Room::Beside},
        {Kind::Label, &WidgetBuilder::makeLabel, Room::Offered},
        {Kind::TabView, &WidgetBuilder::makeTabView, Room::All},
        {Kind::TextField, &WidgetBuilder::makeTextField, Room::Beside},
        {Kind::SecureField, &WidgetBuilder::makeTextField, Room::Beside},
        {Kind::Button, &WidgetBuilder::makeButton, Room::OfferedInGrid},
        {Kind::CheckBox, &WidgetBuilder::makeButton},
        {Kind::PopUp, &WidgetBuilder::makePopUp, Room::OfferedInGrid},
        {Kind::Matrix, &WidgetBuilder::makeMatrix, Room::Own, withSeveralRows},
        {Kind::TableView, &WidgetBuilder::makeTable, Room::All, always},
        {Kind::TextView, &WidgetBuilder::makeTextView, Room::All, always},
    });

    static_assert(platform::hasLineForEach(lines,
                                           [](const platform::ElementRule& rule) {
                                               return rule.place == platform::Place::InLayout;
                                           }),
                  "the window has a widget for each kind of element that stands in a layout");
};

const WidgetKind& widgetKind(const InterfaceNode& node) {
    static constexpr WidgetKind other{};
    const WidgetKind* line = platform::lineFor(node.kind, WidgetKinds::lines);
    return line == nullptr ? other : *line;
}

bool isHigh(const InterfaceNode& node) {
    const WidgetKind& kind = widgetKind(node);
    return kind.isHigh != nullptr && kind.isHigh(node);
}

} // namespace frontend
