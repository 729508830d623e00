#include "platform/appkit/InterfaceModels.h"

#include "platform/appkit/ElementRule.h"
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

/// The owner as the delegate that the node needs; refuses the file and returns null when it is not one.
template <class Delegate>
Delegate* ownerAs(const std::function<Delegate*(void*)>& cast, const InterfaceNode& node,
                  const ModelMaking& making) {
    Delegate* delegate = cast(making.owner);
    if (delegate == nullptr) {
        making.refuse(
            node.line,
            stringWithFormat("the class \"%@\" cannot serve a <%@>: it is not a delegate of that kind",
                             making.ownerClass.name, elementName(node.kind)));
    }
    return delegate;
}

} // namespace

std::unique_ptr<Element> makeWindow(const InterfaceNode& node, const ModelMaking& making) {
    auto window = std::make_unique<NSWindow>(node.kind == InterfaceKind::Window  ? NSWindowKind::Main
                                             : node.kind == InterfaceKind::Sheet ? NSWindowKind::Sheet
                                                                                 : NSWindowKind::Panel);
    window->setTitle(node.attribute("title"));
    if (isYes(node, "delegate")) {
        window->setDelegate(ownerAs(making.ownerClass.windowDelegate, node, making));
    }
    return window;
}

std::unique_ptr<Element> makeDrawer(const InterfaceNode& /*node*/, const ModelMaking& /*making*/) {
    return std::make_unique<NSDrawer>();
}

std::unique_ptr<Element> makeMenuItem(const InterfaceNode& node, const ModelMaking& /*making*/) {
    auto item = std::make_unique<NSMenuItem>();
    item->setTitle(node.attribute("title"));
    return item;
}

std::unique_ptr<Element> makeButton(const InterfaceNode& node, const ModelMaking& /*making*/) {
    auto button = std::make_unique<NSButton>(node.kind == InterfaceKind::CheckBox ? NSButtonKind::CheckBox
                                                                                  : NSButtonKind::Push);
    button->setTitle(node.attribute("title"));
    button->setState(node.attribute("state") == "on" ? NSOnState : NSOffState);
    const std::string& key = node.attribute("key");
    button->setKeyEquivalent(key == "return" ? "\r" : key == "escape" ? "\033" : "");
    return button;
}

std::unique_ptr<Element> makeLabel(const InterfaceNode& node, const ModelMaking& /*making*/) {
    if (!node.attributes.contains("outlet") && !node.attributes.contains("name")) {
        return nullptr;
    }
    auto label = std::make_unique<NSTextField>();
    label->setStringValue(node.attribute("text"));
    label->setEditable(false);
    return label;
}

std::unique_ptr<Element> makeField(const InterfaceNode& node, const ModelMaking& making) {
    auto field = node.kind == InterfaceKind::SecureField ? std::make_unique<NSSecureTextField>()
                                                         : std::make_unique<NSTextField>();
    field->setStringValue(node.attribute("text"));
    if (isYes(node, "delegate")) {
        field->setDelegate(ownerAs(making.ownerClass.textFieldDelegate, node, making));
    }
    return field;
}

std::unique_ptr<Element> makePopUp(const InterfaceNode& node, const ModelMaking& /*making*/) {
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

std::unique_ptr<Element> makeMatrix(const InterfaceNode& node, const ModelMaking& making) {
    const int rows = ::intValue(node.attribute("rows"));
    const int columns = ::intValue(node.attribute("columns"));
    const auto cells = static_cast<long long>(node.children.size());
    if (rows < 1 || columns < 1 || static_cast<long long>(rows) * columns != cells) {
        making.refuse(node.line,
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

std::unique_ptr<Element> makeTable(const InterfaceNode& node, const ModelMaking& making) {
    auto table = std::make_unique<NSTableView>();
    std::set<std::string> identifiers;
    for (const auto& column : node.children) {
        if (!identifiers.insert(column->attribute("id")).second) {
            making.refuse(column->line,
                          stringWithFormat("the table has a second column \"%@\"", column->attribute("id")));
        }
        NSTableColumn made{column->attribute("id"), column->attribute("title")};
        if (column->attributes.contains("width")) {
            made.width = ::intValue(column->attribute("width"));
        }
        made.hidden = isYes(*column, "hidden");
        made.display = column->attribute("display");
        table->addTableColumn(std::move(made));
    }
    table->setAllowsMultipleSelection(isYes(node, "multiple"));
    table->setDataSource(ownerAs(making.ownerClass.tableDataSource, node, making));
    table->setDelegate(ownerAs(making.ownerClass.tableDelegate, node, making));
    return table;
}

std::unique_ptr<Element> makeTextView(const InterfaceNode& /*node*/, const ModelMaking& /*making*/) {
    return std::make_unique<NSTextView>();
}

std::unique_ptr<Element> makeTabView(const InterfaceNode& node, const ModelMaking& making) {
    auto tabs = std::make_unique<NSTabView>();
    for (const auto& tab : node.children) {
        tabs->addTabViewItem(tab->attribute("label"));
    }
    tabs->setShowsTabs(node.attribute("tabs") != "hidden");
    if (isYes(node, "delegate")) {
        tabs->setDelegate(ownerAs(making.ownerClass.tabViewDelegate, node, making));
    }
    return tabs;
}

} // namespace platform
