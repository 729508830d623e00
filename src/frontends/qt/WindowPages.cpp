#include "frontends/qt/WindowPages.h"

#include "frontends/qt/FilterField.h"
#include "frontends/qt/Menus.h"
#include "frontends/qt/NodeAttributes.h"
#include "frontends/qt/ReadingOrder.h"
#include "frontends/qt/TabView.h"
#include "platform/appkit/NSButton.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>
#include <QTabBar>

#include <utility>

namespace frontend {

using platform::InterfaceNode;

WindowPages::WindowPages(NSTabView& tabs, QMainWindow& window, WindowActions& actions, RefreshQueue& queue)
    : QObject(&window), tabs_(tabs), window_(window), actions_(actions), queue_(queue) {
    const QList<QAction*> menus = window.menuBar()->actions();
    auto* menu = new QMenu(localizedTitle("Page"), window.menuBar());
    menu->setObjectName("pageMenu");
    // Insert after the first menu, the application's.
    window.menuBar()->insertMenu(menus.size() > 1 ? menus[1] : nullptr, menu);
    new_ = addAction(*menu, "newOfPage", {}, QKeySequence::New, [this] { use("new"); });
    find_ =
        addAction(*menu, "filterOfPage", localizedTitle("Filter"), QKeySequence::Find, [this] { find(); });
    refresh_ =
        addAction(*menu, "refreshPage", localizedTitle("Refresh"), Qt::Key_F5, [this] { use("refresh"); });
    menu->addSeparator();
    QAction* next = addAction(*menu, "nextPage", localizedTitle("Next Page"), Qt::CTRL | Qt::Key_PageDown,
                              [this] { turn(1); });
    next->setShortcuts({next->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Tab)});
    QAction* previous = addAction(*menu, "previousPage", localizedTitle("Previous Page"),
                                  Qt::CTRL | Qt::Key_PageUp, [this] { turn(-1); });
    previous->setShortcuts({previous->shortcut(), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Tab)});
    auto* bar = new QShortcut(Qt::Key_F10, &window);
    connect(bar, &QShortcut::activated, this,
            [this] { window_.menuBar()->setActiveAction(window_.menuBar()->actions().value(0)); });
    new Binding(this, queue, tabs.changed, [this] { load(); });
}

QAction* WindowPages::addAction(QMenu& menu, const char* name, const QString& text, const QKeySequence& key,
                                std::function<void()> act) {
    QAction* action = menu.addAction(text, this, std::move(act));
    action->setObjectName(name);
    action->setShortcut(key);
    return action;
}

const InterfaceNode* WindowPages::buttonOf(const std::string& role) const {
    const InterfaceNode* node = actions_.interface().findNode(tabs_.name());
    const InterfaceNode* found = nullptr;
    const auto page = static_cast<std::size_t>(tabs_.indexOfSelectedTabViewItem());
    if (node != nullptr && page < node->children.size()) {
        visitNodes(*node->children[page], [&](const InterfaceNode& each) {
            const bool isIt = each.kind == platform::InterfaceKind::Button && each.attribute("role") == role;
            found = found == nullptr && isIt ? &each : found;
        });
    }
    return found;
}

void WindowPages::load() {
    const InterfaceNode* begin = buttonOf("new");
    // On a page where nothing can be begun, the item keeps its last title.
    if (begin != nullptr) {
        new_->setText(title(modelOf<NSButton>(*begin)->title()));
    }
    new_->setEnabled(begin != nullptr);
    find_->setEnabled(begin != nullptr); // only a page with a list can be searched
    refresh_->setEnabled(buttonOf("refresh") != nullptr);
}

void WindowPages::use(const std::string& role) {
    if (const InterfaceNode* button = buttonOf(role)) {
        actions_.use(*button);
    }
}

void WindowPages::find() {
    QList<FilterField*> fields = window_.findChildren<FilterField*>();
    fields.removeIf([](const FilterField* each) { return !each->isVisible(); });
    if (!fields.isEmpty()) { // of two fields, the one without the focus
        const auto at = fields.indexOf(qobject_cast<FilterField*>(window_.focusWidget()));
        FilterField* field = fields[(at + 1) % fields.size()];
        field->setFocus(Qt::ShortcutFocusReason);
        field->selectAll();
    }
}

void WindowPages::turn(int pages) {
    const int count = tabs_.numberOfTabViewItems();
    const int page = (tabs_.indexOfSelectedTabViewItem() + pages + count) % count;
    const bool isInBar = qobject_cast<QTabBar*>(window_.focusWidget()) != nullptr;
    endEditingOfFocusedField();
    queue_.runUserEvent([this, page] { tabs_.selectTabViewItemAtIndex(page); });
    const auto* view = window_.findChild<TabView*>(shown(tabs_.name()));
    if (view != nullptr && !isInBar) {
        focusBeginningOf(view->currentPage());
    }
}

} // namespace frontend
