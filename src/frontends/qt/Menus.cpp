#include "frontends/qt/Menus.h"

#include "frontends/qt/LineEdit.h"
#include "frontends/qt/NodeAttributes.h"
#include "platform/appkit/NSAlert.h"
#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSWindow.h"
#include "platform/foundation/NSBundle.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>

using platform::InterfaceNode;

namespace {

QAction::MenuRole roleOf(const std::string& role) {
    if (role == "about") {
        return QAction::AboutRole;
    }
    if (role == "quit") {
        return QAction::QuitRole;
    }
    return role == "preferences" ? QAction::PreferencesRole : QAction::NoRole;
}

/// The question that the interface file has asked before an item is used: its neighbour is picked by a slip
/// of the hand. An item without one is meant as it is picked.
bool isMeant(const NSMenuItem& item, const std::string& question) {
    return question.empty() ||
           NSRunAlertPanel(item.title(), "%@", NSLocalizedString("No"), NSLocalizedString("Yes"),
                           std::nullopt, question) == NSAlertAlternateReturn;
}

void addItem(QMenu& menu, const InterfaceNode& node, RefreshQueue& queue) {
    auto* item = modelOf<NSMenuItem>(node);
    auto* action = menu.addAction(title(item != nullptr ? item->title() : node.attribute("title")));
    if (const std::string& key = node.attribute("key"); !key.empty()) {
        action->setShortcut(QKeySequence(shown(key)));
    }
    const std::string& role = node.attribute("role");
    action->setMenuRole(roleOf(role));
    const bool quits = role == "quit";
    QObject::connect(action, &QAction::triggered, action, [item, &node, quits, &queue] {
        endEditingOfFocusedField();
        if (quits) {
            closeMainWindow(queue);
        } else if (item != nullptr) {
            dispatchUserEvent(queue, [item, &node] {
                if (isMeant(*item, node.attribute("confirm"))) {
                    item->performClick();
                }
            });
        }
    });
    if (item != nullptr) {
        new Binding(action, queue, item->changed, [action, item] {
            action->setText(title(item->title()));
            action->setEnabled(item->isEnabled());
        });
    }
}

} // namespace

void fillMenuBar(QMainWindow& window, const InterfaceNode& menuBar, RefreshQueue& queue) {
    for (const auto& node : menuBar.children) {
        QMenu* menu = window.menuBar()->addMenu(title(node->attribute("title")));
        for (const auto& entry : node->children) {
            if (entry->kind == "separator") {
                menu->addSeparator();
            } else {
                addItem(*menu, *entry, queue);
            }
        }
    }
}

void closeMainWindow(RefreshQueue& queue) {
    dispatchUserEvent(queue, [] {
        if (NSWindow* main = NSApp().mainWindow()) {
            main->close();
        }
    });
}

void endEditingOfFocusedField() {
    if (auto* edit = qobject_cast<LineEdit*>(QApplication::focusWidget())) {
        edit->endEditing();
    }
}
