#include "frontends/qt/Menus.h"

#include "frontends/qt/LineEdit.h"
#include "frontends/qt/NodeAttributes.h"
#include "frontends/qt/WindowActions.h"
#include "platform/appkit/NSButton.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>

namespace frontend {

using platform::InterfaceNode;

namespace {

QAction::MenuRole roleOf(const std::string& role) {
    if (role == "about") {
        return QAction::AboutRole;
    }
    if (role == "quit") {
        return QAction::QuitRole;
    }
    return QAction::NoRole;
}

void addItem(QMenu& menu, const InterfaceNode& node, WindowActions& actions, RefreshQueue& queue) {
    auto* item = modelOf<NSMenuItem>(node);
    auto* action = menu.addAction(title(item != nullptr ? item->title() : node.attribute("title")));
    if (const std::string& key = node.attribute("key"); !key.empty()) {
        action->setShortcut(QKeySequence(shown(key)));
    }
    action->setMenuRole(roleOf(node.attribute("role")));
    QObject::connect(action, &QAction::triggered, action, [&actions, &node] { actions.use(node); });
    if (item != nullptr) {
        new Binding(action, queue, item->changed, [action, item] {
            action->setText(title(item->title()));
            action->setEnabled(item->isEnabled());
        });
    }
}

} // namespace

void fillMenuBar(QMainWindow& window, const InterfaceNode& menuBar, WindowActions& actions,
                 RefreshQueue& queue) {
    for (const auto& node : menuBar.children) {
        QMenu* menu = window.menuBar()->addMenu(title(node->attribute("title")));
        for (const auto& entry : node->children) {
            if (entry->kind == platform::InterfaceKind::MenuSeparator) {
                menu->addSeparator();
            } else {
                addItem(*menu, *entry, actions, queue);
            }
        }
    }
}

void endEditingOfFocusedField() {
    if (auto* edit = qobject_cast<LineEdit*>(QApplication::focusWidget())) {
        edit->endEditing();
    }
}

void insertBeforeHelp(QMenuBar& bar, QMenu& menu) {
    const QList<QAction*> menus = bar.actions();
    bar.insertMenu(menus.isEmpty() ? nullptr : menus.constLast(), &menu);
}

} // namespace frontend
