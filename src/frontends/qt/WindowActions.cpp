#include "frontends/qt/WindowActions.h"

#include "frontends/qt/FieldHints.h"
#include "frontends/qt/Menus.h"
#include "frontends/qt/NodeAttributes.h"
#include "platform/appkit/NSAlert.h"
#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSWindow.h"
#include "platform/foundation/NSBundle.h"

#include <QMenu>

#include <filesystem>
#include <system_error>

namespace frontend {

using platform::InterfaceNode;

namespace {

/// Returns the node of `element` in the tree, or null.
const InterfaceNode* nodeOf(const InterfaceNode& tree, const platform::Element* element) {
    const InterfaceNode* found = nullptr;
    visitNodes(tree, [&found, element](const InterfaceNode& each) {
        found = each.element.get() == element ? &each : found;
    });
    return found;
}

/// Returns the button's title without the dots that announce a question.
std::string titleOf(const InterfaceNode& node) {
    static constexpr std::string_view dots = "…";
    static constexpr std::string_view gap = "\u00A0"; // before the dots in some languages
    const auto* button = modelOf<NSButton>(node);
    const auto* item = modelOf<NSMenuItem>(node);
    std::string title = button != nullptr ? button->title() : item != nullptr ? item->title() : std::string();
    if (title.ends_with(dots)) {
        title.resize(title.size() - dots.size());
        title.resize(title.size() - (title.ends_with(gap) ? gap.size() : 0));
    }
    return title;
}

void click(const InterfaceNode& node) {
    if (auto* button = modelOf<NSButton>(node)) {
        button->performClick();
    } else if (auto* item = modelOf<NSMenuItem>(node)) {
        item->performClick();
    }
}

} // namespace

void WindowActions::use(const InterfaceNode& node) {
    endEditingOfFocusedField();
    if (node.attribute("role") == "quit") {
        closeMainWindow();
        return;
    }
    if (node.attribute("role") == "guide") {
        NSWorkspace::openURL(NSBundle::mainBundle().objectForInfoDictionaryKey("BRGuide"));
        return;
    }
    if (isYes(node, "checks") && !passesChecks(node)) {
        return;
    }
    queue_.runUserEvent([this, &node] {
        // Ask nothing for a disabled control.
        const std::string question = textAbout(node, "confirm");
        const auto* control = modelOf<NSControl>(node);
        if (!question.empty() && control != nullptr && control->isEnabled()) {
            confirmation_ = Confirmation{titleOf(node), question};
        }
        if (leavesConfirmations_ || !confirmation_ || isConfirmed(*takeConfirmation())) {
            perform(node);
            confirmation_.reset();
            if (control != nullptr) {
                used.emit(control->action().operation);
            }
        }
    });
    if (const std::string& field = node.attribute("edits"); begun_ && !field.empty()) {
        begun_(field);
    }
}

void WindowActions::closeMainWindow() {
    queue_.runUserEvent([this] {
        NSWindow* main = NSApp().mainWindow();
        if (main != nullptr && (!mayClose_ || mayClose_())) {
            main->close();
        }
    });
}

void WindowActions::useButtonOf(const std::string& table, const std::string& role) {
    const InterfaceNode* found = nullptr;
    visitNodes(interface_.root(), [&](const InterfaceNode& each) {
        const auto* button = modelOf<NSButton>(each);
        if (found == nullptr && button != nullptr && button->isEnabled() && each.attribute("role") == role &&
            each.attribute("reverts") == table) {
            found = &each;
        }
    });
    if (found != nullptr) {
        use(*found);
    }
}

void WindowActions::addButtonsOf(const std::string& table, QMenu& menu) {
    visitNodes(interface_.root(), [&](const InterfaceNode& each) {
        const auto* button = modelOf<NSButton>(each);
        const std::string& role = each.attribute("role");
        if (button != nullptr && (role == "edit" || role == "delete") && each.attribute("reverts") == table) {
            QAction* entry = menu.addAction(frontend::title(button->title()), [this, &each] { use(each); });
            entry->setEnabled(button->isEnabled());
            // Only shown: the table handles the key.
            entry->setShortcut(role == "edit" ? Qt::Key_Return : Qt::Key_Delete);
            entry->setShortcutContext(Qt::WidgetShortcut);
        }
    });
    if (!menu.isEmpty()) {
        menu.addSeparator();
    }
}

bool WindowActions::passesChecks(const InterfaceNode& node) const {
    // The outer page with the button; pages that a pop-up selects are inside it.
    const InterfaceNode* page = nullptr;
    visitNodes(interface_.root(), [&](const InterfaceNode& each) {
        if (each.kind == platform::InterfaceKind::Tab && nodeOf(each, node.element.get()) != nullptr) {
            page = &each;
        }
    });
    if (page == nullptr) {
        return true;
    }
    std::string field;
    std::string why;
    visitNodes(*page, [&](const InterfaceNode& each) {
        if (std::string problem = why.empty() ? limitProblem(each) : std::string(); !problem.empty()) {
            field = each.element->name();
            why = std::move(problem);
        }
    });
    if (!why.empty() && refused_) {
        refused_(field, why);
    }
    return why.empty();
}

void WindowActions::beginWith(const std::string& table,
                              const std::vector<std::pair<std::string, std::string>>& textsOfFields) {
    useButtonOf(table, "new");
    for (const auto& [name, text] : textsOfFields) {
        auto* field = find<NSTextField>(name);
        const InterfaceNode* node = interface_.findNode(name);
        if (field == nullptr || node == nullptr) {
            continue;
        }
        queue_.runUserEvent([field, &text = text] { field->performReplace(text); });
        fieldWasLeft(*node);
    }
    if (begun_ && !textsOfFields.empty()) {
        begun_(textsOfFields.front().first);
    }
}

bool WindowActions::isConfirmed(const Confirmation& confirmation) {
    return NSRunAlertPanel(confirmation.title, "%@", NSLocalizedString("No"), NSLocalizedString("Yes"),
                           std::nullopt, confirmation.question) == NSAlertAlternateReturn;
}

void WindowActions::fieldWasLeft(const InterfaceNode& node) {
    const std::string& operation = node.attribute("chooses");
    const auto* field = modelOf<NSTextField>(node);
    NSControl* chooser = operation.empty() ? nullptr : interface_.findWiredTo(operation);
    if (field == nullptr || chooser == nullptr || !answerPanel_) {
        return;
    }
    const std::string path = field->stringValue();
    std::error_code ignored; // a folder that cannot be looked at cannot be chosen
    if (!path.starts_with('/') || !std::filesystem::is_directory(path, ignored)) {
        return;
    }
    queue_.runUserEvent([this, chooser, &path] {
        answerPanel_(path);
        chooser->sendAction();
        answerPanel_(std::nullopt);
    });
}

void WindowActions::perform(const InterfaceNode& node) const {
    const std::string& role = node.attribute("role");
    if (role == "cancel") {
        cancelSheet();
    } else if (role == "new") {
        beginNew(node);
        beginEditing(node);
    } else if (role == "edit") {
        beginEditing(node);
    } else {
        click(node);
        if (auto* table = find<NSTableView>(node.attribute("reverts"))) {
            showDefaultsWithoutRow(*table);
            showNothingForMissingNumbers(*table);
        }
    }
}

void WindowActions::beginNew(const InterfaceNode& node) const {
    auto* table = find<NSTableView>(node.attribute("reverts"));
    if (table != nullptr) {
        table->deselectAll();
    }
    click(node);
    if (table != nullptr) {
        showDefaultsWithoutRow(*table);
    }
    const std::string& also = node.attribute("also");
    if (NSControl* control = also.empty() ? nullptr : interface_.findWiredTo(also)) {
        control->sendAction();
    }
}

void WindowActions::beginEditing(const InterfaceNode& node) const {
    const platform::Element* field = interface_.find(node.attribute("edits"));
    visitNodes(interface_.root(), [field](const InterfaceNode& each) {
        auto* drawer = modelOf<NSDrawer>(each);
        if (drawer != nullptr && !drawer->isOpen() && nodeOf(each, field) != nullptr) {
            drawer->open();
        }
    });
}

void WindowActions::cancelSheet() const {
    NSWindow* sheet = NSApp().attachedSheet();
    const InterfaceNode* node = nodeOf(interface_.root(), sheet);
    if (sheet == nullptr || node == nullptr) {
        return;
    }
    NSApp().cancelSheet(sheet);
    // What was typed is gone, so what was said about it must go too.
    visitNodes(*node, [](const InterfaceNode& each) {
        auto* field = modelOf<NSTextField>(each);
        if (field != nullptr && (field->isSecure() || each.attribute("style") == "warning")) {
            field->setStringValue("");
        }
    });
}

void WindowActions::showInSheet(const std::string& text) const {
    const NSWindow* sheet = NSApp().attachedSheet();
    const InterfaceNode* node = sheet == nullptr ? nullptr : nodeOf(interface_.root(), sheet);
    if (node == nullptr) {
        return;
    }
    visitNodes(*node, [&text](const InterfaceNode& each) {
        auto* label = modelOf<NSTextField>(each);
        if (label != nullptr && each.attribute("style") == "warning") {
            label->setStringValue(text);
        }
    });
}

std::string WindowActions::textAbout(const InterfaceNode& node, std::string_view attribute) const {
    const std::string& text = node.attribute(attribute);
    const auto* field = find<NSTextField>(node.attribute("about"));
    return field == nullptr ? text : stringWithFormat(text, field->stringValue());
}

void WindowActions::showDefaultsWithoutRow(const NSTableView& table) const {
    if (!table.selectedRows().empty()) {
        return;
    }
    visitNodes(interface_.root(), [&table](const InterfaceNode& each) {
        if (each.attribute("rowOf") != table.name() || table.name().empty()) {
            return;
        }
        if (auto* box = modelOf<NSButton>(each)) {
            box->setState(NSOffState);
        } else if (auto* menu = modelOf<NSPopUpButton>(each); menu != nullptr && menu->numberOfItems() > 0) {
            menu->selectItemAtIndex(0);
        }
    });
}

void WindowActions::showNothingForMissingNumbers(NSTableView& table) const {
    const int row = table.selectedRow();
    if (row < 0 || table.name().empty()) {
        return;
    }
    visitNodes(interface_.root(), [&table, row](const InterfaceNode& each) {
        auto* menu = modelOf<NSPopUpButton>(each);
        if (menu == nullptr || each.attribute("rowOf") != table.name()) {
            return;
        }
        const NSTableColumn* shown = table.tableColumnWithIdentifier(each.attribute("column"));
        if (shown != nullptr && !beginsWithInteger(table.objectValue(*shown, row))) {
            menu->selectItemAtIndex(-1);
        }
    });
}

} // namespace frontend
