#include "frontends/qt/WindowView.h"

#include "frontends/qt/Buttons.h"
#include "frontends/qt/Drawer.h"
#include "frontends/qt/Menus.h"
#include "frontends/qt/NodeAttributes.h"
#include "frontends/qt/ReadingOrder.h"
#include "platform/appkit/NSApplication.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMainWindow>
#include <QScreen>
#include <QShortcut>

#include <algorithm>

namespace frontend {

using platform::InterfaceNode;

namespace {

const InterfaceNode* childOf(const InterfaceNode& node, bool drawer) {
    const auto found = std::find_if(node.children.begin(), node.children.end(), [drawer](const auto& child) {
        return (child->kind == platform::InterfaceKind::Drawer) == drawer;
    });
    return found == node.children.end() ? nullptr : found->get();
}

/// Returns the drawer that contains the widget, or null.
const QWidget* drawerAround(const QWidget* widget) {
    while (widget != nullptr && qobject_cast<const Drawer*>(widget) == nullptr) {
        widget = widget->parentWidget();
    }
    return widget;
}

/// Returns the button for `key` that is nearest to `from`: in the same box, else on the same page, and so on
/// outwards. A drawer's button is only for keys pressed in the drawer.
QAbstractButton* buttonFor(const QString& key, const QWidget* from, const QWidget& window) {
    const QWidget* drawer = drawerAround(from);
    for (const QWidget* around = from == nullptr ? &window : from; around != nullptr;
         around = around == &window ? nullptr : around->parentWidget()) {
        for (QAbstractButton* button : around->findChildren<QAbstractButton*>()) {
            if (keyEquivalentOf(*button) == key && button->isVisible() && button->isEnabled() &&
                drawerAround(button) == drawer) {
                return button;
            }
        }
    }
    return nullptr;
}

} // namespace

WindowView::WindowView(const InterfaceNode& node, const InterfaceNode* menuBar, QWidget* parent,
                       bool animated, WindowActions& actions, RefreshQueue& queue)
    : window_(*modelOf<NSWindow>(node)), actions_(actions), queue_(queue),
      builder_(actions, queue, animated) {
    if (window_.kind() == NSWindowKind::Main) {
        buildMain(node, menuBar);
    } else {
        buildDialog(node, parent);
    }
    widget_->setObjectName(shown(window_.name()));
    if (const int width = number(node, "width"), height = number(node, "height"); width > 0 && height > 0) {
        widget_->resize(width, height);
    }
    widget_->installEventFilter(this);
    orderedFront_ = window_.orderedFront.connect([this] { raise(); });
    new Binding(widget_, queue, window_.changed, [this] { widget_->setWindowTitle(shown(window_.title())); });
}

WindowView::~WindowView() {
    if (widget_ != nullptr) {
        widget_->removeEventFilter(this);
        delete widget_.data();
    }
}

void WindowView::buildMain(const InterfaceNode& node, const InterfaceNode* menuBar) {
    auto* main = new QMainWindow;
    widget_ = main;
    auto* central = new QWidget;
    auto* layout = new DrawerLayout(central);
    if (const InterfaceNode* contents = childOf(node, false)) {
        layout->addWidget(builder_.makePage(*contents));
    }
    if (const InterfaceNode* drawer = childOf(node, true)) {
        layout->addWidget(builder_.makeDrawer(*drawer, number(node, "width")));
    }
    main->setCentralWidget(central);
    if (menuBar != nullptr) {
        fillMenuBar(*main, *menuBar, actions_, queue_);
    }
}

void WindowView::buildDialog(const InterfaceNode& node, QWidget* parent) {
    const bool isSheet = window_.kind() == NSWindowKind::Sheet;
    const Qt::WindowFlags flags =
        isSheet ? Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint : Qt::WindowFlags(Qt::Dialog);
    widget_ = new QWidget(parent, flags);
    auto* layout = new QHBoxLayout(widget_);
    layout->setContentsMargins(0, 0, 0, 0);
    if (const InterfaceNode* contents = childOf(node, false)) {
        layout->addWidget(builder_.makePage(*contents));
    }
    if (isSheet) {
        widget_->setWindowModality(Qt::WindowModal);
        // The sheet blocks the menu bar, but it must still be possible to quit.
        auto* quit = new QShortcut(QKeySequence::Quit, widget_);
        connect(quit, &QShortcut::activated, this, [this] { actions_.closeMainWindow(); });
    }
}

void WindowView::followVisibility() {
    if (widget_ == nullptr || widget_->isVisible() == window_.isVisible()) {
        return;
    }
    if (!window_.isVisible()) {
        widget_->hide();
        return;
    }
    queue_.flush();
    place();
    widget_->show();
    if (window_.kind() == NSWindowKind::Sheet) {
        widget_->activateWindow();
    }
    if (window_.kind() == NSWindowKind::Sheet || widget_->focusWidget() == nullptr) {
        focusBeginningOf(*widget_);
    }
}

void WindowView::place() {
    const QWidget* parent = widget_->parentWidget();
    if (window_.kind() == NSWindowKind::Sheet && parent != nullptr) {
        widget_->adjustSize();
        const QPoint top = parent->mapToGlobal(QPoint((parent->width() - widget_->width()) / 2, 0));
        widget_->move(top);
    } else if (const QScreen* screen = widget_->screen(); screen != nullptr && window_.isCentered()) {
        const QRect area = screen->availableGeometry();
        widget_->move(area.center() - widget_->rect().center());
    }
}

void WindowView::raise() {
    if (widget_ != nullptr && widget_->isVisible()) {
        widget_->raise();
        widget_->activateWindow();
    }
}

bool WindowView::keyPressed(int key) {
    const bool isReturn = key == Qt::Key_Return || key == Qt::Key_Enter;
    if (!isReturn && key != Qt::Key_Escape) {
        return false;
    }
    if (QAbstractButton* button = buttonFor(isReturn ? "\r" : "\033", widget_->focusWidget(), *widget_)) {
        button->click();
        return true;
    }
    if (!isReturn && window_.kind() == NSWindowKind::Panel) {
        widget_->close();
        return true;
    }
    return false;
}

bool WindowView::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::Close:
        // The model decides whether the window closes: a sheet stays until it is answered.
        event->ignore();
        if (window_.kind() == NSWindowKind::Main) {
            actions_.closeMainWindow();
        } else {
            queue_.runUserEvent([this] { window_.close(); });
        }
        return true;
    case QEvent::WindowActivate:
        queue_.runUserEvent([this] { window_.becomeKey(); });
        break;
    case QEvent::WindowDeactivate:
        queue_.runUserEvent([this] { window_.resignKey(); });
        break;
    case QEvent::KeyPress:
        return keyPressed(static_cast<QKeyEvent*>(event)->key());
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace frontend
