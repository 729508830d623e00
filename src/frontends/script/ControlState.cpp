#include "frontends/script/ControlState.h"

#include "frontends/script/ScriptWords.h"
#include "platform/appkit/InterfaceTable.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSMatrix.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTabView.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSTextView.h"
#include "platform/appkit/NSWindow.h"

#include <algorithm>
#include <array>

namespace frontend {

using platform::InterfaceKind;

namespace {

const char* onOrOff(int state) {
    return state == NSOnState ? "on" : "off";
}

/// The number of Unicode characters: bytes that do not continue one are counted.
std::size_t characterCount(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
    }));
}

std::string describe(const NSTextField& field) {
    return quotedText(field.isSecure() ? std::string(characterCount(field.stringValue()), '*')
                                       : field.stringValue());
}

std::string describe(const NSButton& button) {
    if (button.kind() == NSButtonKind::CheckBox) {
        return onOrOff(button.state());
    }
    std::string text = quotedText(button.title());
    if (button.image()) {
        text += " image=" + scriptWord(button.image()->name());
    }
    return text;
}

std::string describe(const NSPopUpButton& popUp) {
    if (popUp.indexOfSelectedItem() < 0) {
        return "none";
    }
    return std::to_string(popUp.indexOfSelectedItem()) + ' ' +
           quotedText(popUp.titleOfSelectedItem().value_or(""));
}

std::string describe(const NSMatrix& matrix) {
    std::string text;
    for (int row = 0; row < matrix.numberOfRows(); ++row) {
        for (int column = 0; column < matrix.numberOfColumns(); ++column) {
            text += (text.empty() ? "" : " ");
            text += onOrOff(matrix.stateAt(row, column));
        }
    }
    return text;
}

std::string describe(const NSTableView& table) {
    std::string text = std::to_string(table.numberOfRows()) + " rows, selected";
    for (const int row : table.selectedRows()) {
        text += ' ' + std::to_string(row);
    }
    return table.selectedRows().empty() ? text + " none" : text;
}

std::string describe(const NSWindow& window) {
    const std::string text = window.isVisible() ? "shown" : "hidden";
    // A sheet has no title bar.
    return window.kind() == NSWindowKind::Sheet ? text : text + ' ' + quotedText(window.title());
}

std::string describe(const NSTextView& view) {
    std::string text;
    for (const platform::TextRun& run : view.text()) {
        text += run.text;
    }
    return quotedText(text);
}

std::string describe(const NSDrawer& drawer) {
    return drawer.isOpen() ? "open" : "closed";
}

std::string describe(const NSTabView& tabView) {
    return std::to_string(tabView.indexOfSelectedTabViewItem());
}

std::string describe(const NSMenuItem& item) {
    return quotedText(item.title());
}

template <class Model>
std::string describeAs(const platform::Element& element) {
    return describe(dynamic_cast<const Model&>(element));
}

/// How a script shows a kind of element that has a model.
struct ShownKind {
    InterfaceKind kind;
    std::string (*describe)(const platform::Element& element);
};

constexpr auto shownKinds = std::to_array<ShownKind>({
    {InterfaceKind::MenuItem, describeAs<NSMenuItem>},
    {InterfaceKind::Window, describeAs<NSWindow>},
    {InterfaceKind::Sheet, describeAs<NSWindow>},
    {InterfaceKind::Panel, describeAs<NSWindow>},
    {InterfaceKind::Drawer, describeAs<NSDrawer>},
    {InterfaceKind::Label, describeAs<NSTextField>},
    {InterfaceKind::TabView, describeAs<NSTabView>},
    {InterfaceKind::TextField, describeAs<NSTextField>},
    {InterfaceKind::SecureField, describeAs<NSTextField>},
    {InterfaceKind::Button, describeAs<NSButton>},
    {InterfaceKind::CheckBox, describeAs<NSButton>},
    {InterfaceKind::PopUp, describeAs<NSPopUpButton>},
    {InterfaceKind::Matrix, describeAs<NSMatrix>},
    {InterfaceKind::TableView, describeAs<NSTableView>},
    {InterfaceKind::TextView, describeAs<NSTextView>},
});

static_assert(platform::hasLineForEach(shownKinds,
                                       [](const platform::ElementRule& rule) { return bool(rule.make); }),
              "a script can show each kind of element that has a model");

std::string describeRows(NSTableView& table) {
    std::string text;
    for (int row = 0; row < table.numberOfRows(); ++row) {
        text += '\n' + std::to_string(row);
        for (const NSTableColumn& column : table.tableColumns()) {
            text += ' ' + scriptWord(column.identifier) + '=' + quotedText(table.objectValue(column, row));
        }
    }
    return text;
}

} // namespace

std::string describeState(const platform::InterfaceNode& node) {
    platform::Element& element = *node.element;
    std::string text = element.name() + ' ' + lineFor(node.kind, shownKinds)->describe(element);
    if (const auto* control = dynamic_cast<const NSControl*>(&element);
        control != nullptr && !control->isEnabled()) {
        text += " disabled";
    }
    if (auto* table = dynamic_cast<NSTableView*>(&element)) {
        text += describeRows(*table);
    }
    return text;
}

std::string describeItems(const NSPopUpButton& popUp) {
    std::string text;
    for (std::size_t index = 0; index < popUp.items().size(); ++index) {
        const NSPopUpButton::Item& item = popUp.items()[index];
        text += (text.empty() ? "" : "\n");
        text += popUp.name() + '[' + std::to_string(index) + "] " + quotedText(item.title) +
                " tag=" + std::to_string(item.tag);
    }
    return text;
}

} // namespace frontend
