#include "frontends/script/ControlState.h"

#include "frontends/script/ScriptWords.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSMatrix.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTabView.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSTextView.h"
#include "platform/appkit/NSWindow.h"

#include <algorithm>

namespace frontend {

namespace {

const char* onOrOff(int state) {
    return state == NSOnState ? "on" : "off";
}

/// The number of Unicode characters: of bytes that do not continue one.
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
    // A sheet hangs from its window and has no title bar.
    return window.kind() == NSWindowKind::Sheet ? text : text + ' ' + quotedText(window.title());
}

std::string describe(const NSTextView& view) {
    std::string text;
    for (const platform::TextRun& run : view.text()) {
        text += run.text;
    }
    return quotedText(text);
}

/// Describes `element` when it is of the kind asked for.
template <class Kind>
bool describeAs(const platform::Element& element, std::string& text) {
    const auto* kind = dynamic_cast<const Kind*>(&element);
    if (kind == nullptr) {
        return false;
    }
    text = describe(*kind);
    return true;
}

bool describeAnyKind(const platform::Element& element, std::string& text) {
    if (const auto* drawer = dynamic_cast<const NSDrawer*>(&element)) {
        text = drawer->isOpen() ? "open" : "closed";
        return true;
    }
    if (const auto* tabView = dynamic_cast<const NSTabView*>(&element)) {
        text = std::to_string(tabView->indexOfSelectedTabViewItem());
        return true;
    }
    if (const auto* item = dynamic_cast<const NSMenuItem*>(&element)) {
        text = quotedText(item->title());
        return true;
    }
    return describeAs<NSTextField>(element, text) || describeAs<NSButton>(element, text) ||
           describeAs<NSPopUpButton>(element, text) || describeAs<NSMatrix>(element, text) ||
           describeAs<NSTableView>(element, text) || describeAs<NSWindow>(element, text) ||
           describeAs<NSTextView>(element, text);
}

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

std::string describeState(platform::Element& element) {
    std::string state;
    if (!describeAnyKind(element, state)) {
        return "";
    }
    std::string text = element.name() + ' ' + state;
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
