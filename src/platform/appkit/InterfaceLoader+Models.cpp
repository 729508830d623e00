#include "platform/appkit/InterfaceLoader.h"

#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSMatrix.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTextView.h"
#include "platform/foundation/NSString.h"

#include <set>

namespace platform {

namespace {

bool isYes(const InterfaceNode& node, std::string_view attribute) {
    return node.attribute(attribute) == "yes";
}

std::unique_ptr<Element> makeButton(const InterfaceNode& node, NSButtonKind kind) {
    auto button = std::make_unique<NSButton>(kind);
    button->setTitle(node.attribute("title"));
    button->setState(node.attribute("state") == "on" ? NSOnState : NSOffState);
    const std::string& key = node.attribute("key");
    button->setKeyEquivalent(key == "return" ? "\r" : key == "escape" ? "\033" : "");
    return button;
}

std::unique_ptr<Element> makeMenuItem(const InterfaceNode& node) {
    auto item = std::make_unique<NSMenuItem>();
    item->setTitle(node.attribute("title"));
    return item;
}

/// A label has a model only where something fills it; otherwise it is a text of the layout.
std::unique_ptr<Element> makeLabel(const InterfaceNode& node) {
    if (!node.attributes.contains("outlet") && !node.attributes.contains("name")) {
        return nullptr;
    }
    auto label = std::make_unique<NSTextField>();
    label->setStringValue(node.attribute("text"));
    label->setEditable(false);
    return label;
}

std::unique_ptr<Element> makePopUp(const InterfaceNode& node) {
    auto menu = std::make_unique<NSPopUpButton>();
    for (const auto& item : node.children) {
        menu->addItemWithTitle(item->attribute("title"));
        menu->setTag(menu->numberOfItems() - 1, ::intValue(item->attribute("tag")));
        if (isYes(*item, "selected")) {
            menu->selectItemAtIndex(menu->numberOfItems() - 1);
        }
    }
    return menu;
}

} // namespace

std::unique_ptr<Element> InterfaceLoader::makeElement(const InterfaceNode& node, const ElementRule& rule) {
    const std::string_view id = rule.id;
    if (id == "window" || id == "sheet" || id == "panel") {
        return makeWindow(node);
    }
    if (id == "drawer") {
        return std::make_unique<NSDrawer>();
    }
    if (id == "menuItem") {
        return makeMenuItem(node);
    }
    if (id == "button" || id == "checkBox") {
        return makeButton(node, id == "button" ? NSButtonKind::Push : NSButtonKind::CheckBox);
    }
    if (id == "textField") {
        return makeField(node, std::make_unique<NSTextField>());
    }
    if (id == "secureField") {
        return makeField(node, std::make_unique<NSSecureTextField>());
    }
    if (id == "label") {
        return makeLabel(node);
    }
    if (id == "popUp") {
        return makePopUp(node);
    }
    if (id == "matrix") {
        return makeMatrix(node);
    }
    if (id == "tableView") {
        return makeTable(node);
    }
    if (id == "tabView") {
        return makeTabView(node);
    }
    if (id == "textView") {
        return std::make_unique<NSTextView>();
    }
    return nullptr; // mere layout
}

template <class Delegate>
Delegate* InterfaceLoader::ownerAs(const std::function<Delegate*(void*)>& cast, const InterfaceNode& node) {
    Delegate* delegate = cast ? cast(interface_->owner_) : nullptr;
    if (delegate == nullptr) {
        refuse(node.line,
               stringWithFormat("the class \"%@\" cannot stand behind a <%@>: it is no such delegate",
                                interface_->class_->name, node.kind));
    }
    return delegate;
}

std::unique_ptr<Element> InterfaceLoader::makeWindow(const InterfaceNode& node) {
    const bool isMain = node.kind == "window";
    const bool isSheet = node.kind == "sheet";
    auto window = std::make_unique<NSWindow>(isMain    ? NSWindowKind::Main
                                             : isSheet ? NSWindowKind::Sheet
                                                       : NSWindowKind::Panel);
    window->setTitle(node.attribute("title"));
    if (isYes(node, "delegate")) {
        window->setDelegate(ownerAs(interface_->class_->windowDelegate, node));
    }
    hasSheet_ = hasSheet_ || isSheet;
    if (isMain) {
        if (mainWindow_ != nullptr) {
            refuse(node.line, "the file has a second <window>; other windows are panels and sheets");
        }
        mainWindow_ = window.get();
    }
    return window;
}

std::unique_ptr<Element> InterfaceLoader::makeField(const InterfaceNode& node,
                                                    std::unique_ptr<NSTextField> field) {
    field->setStringValue(node.attribute("text"));
    field->setEditable(node.attribute("editable") != "no");
    if (isYes(node, "delegate")) {
        field->setDelegate(ownerAs(interface_->class_->textFieldDelegate, node));
    }
    return field;
}

std::unique_ptr<Element> InterfaceLoader::makeTable(const InterfaceNode& node) {
    auto table = std::make_unique<NSTableView>();
    std::set<std::string> identifiers;
    for (const auto& column : node.children) {
        if (!identifiers.insert(column->attribute("id")).second) {
            refuse(column->line,
                   stringWithFormat("the table has a second column \"%@\"", column->attribute("id")));
        }
        NSTableColumn made{column->attribute("id"), column->attribute("title")};
        if (column->attributes.contains("width")) {
            made.width = ::intValue(column->attribute("width"));
        }
        made.hidden = isYes(*column, "hidden");
        table->addTableColumn(std::move(made));
    }
    table->setAllowsMultipleSelection(isYes(node, "multiple"));
    table->setDataSource(ownerAs(interface_->class_->tableDataSource, node));
    table->setDelegate(ownerAs(interface_->class_->tableDelegate, node));
    return table;
}

std::unique_ptr<Element> InterfaceLoader::makeMatrix(const InterfaceNode& node) {
    const int rows = ::intValue(node.attribute("rows"));
    const int columns = ::intValue(node.attribute("columns"));
    const auto cells = static_cast<long long>(node.children.size());
    if (rows < 1 || columns < 1 || static_cast<long long>(rows) * columns != cells) {
        refuse(node.line,
               stringWithFormat("a matrix of %d x %d does not have %d cells", rows, columns, cells));
        return nullptr;
    }
    auto matrix = std::make_unique<NSMatrix>(rows, columns);
    int index = 0;
    for (const auto& cell : node.children) {
        matrix->setTitleAt(index / columns, index % columns, cell->attribute("title"));
        ++index;
    }
    return matrix;
}

std::unique_ptr<Element> InterfaceLoader::makeTabView(const InterfaceNode& node) {
    auto tabs = std::make_unique<NSTabView>();
    for (const auto& tab : node.children) {
        tabs->addTabViewItem(tab->attribute("label"));
    }
    tabs->setShowsTabs(node.attribute("tabs") != "hidden");
    if (isYes(node, "delegate")) {
        tabs->setDelegate(ownerAs(interface_->class_->tabViewDelegate, node));
    }
    return tabs;
}

} // namespace platform
