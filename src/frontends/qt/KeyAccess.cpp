#include "frontends/qt/KeyAccess.h"

#include "frontends/qt/Buttons.h"
#include "frontends/qt/Drawer.h"
#include "frontends/qt/EmptyNote.h"
#include "frontends/qt/Mnemonics.h"
#include "frontends/qt/ReadingOrder.h"
#include "review/Operations.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCoreApplication>
#include <QEvent>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QShortcutEvent>
#include <QStatusBar>
#include <QTimer>
#include <QToolButton>

#include <algorithm>
#include <utility>

namespace frontend {

namespace {

constexpr QChar beforeKeys(u'\t'); ///< separates a title from the keys that it names

bool standsInBar(const QAction* action) {
    return std::ranges::any_of(action->associatedObjects(), [](const QObject* each) {
        return qobject_cast<const QMenuBar*>(each) != nullptr;
    });
}

void markActions(QList<QAction*> marked, QSet<QChar>& taken) {
    marked.removeIf([](const QAction* each) { return each->isSeparator() || !each->isVisible(); });
    // Titles that can have their first letter come before those that need another one.
    QSet<QChar> firsts;
    std::stable_partition(marked.begin(), marked.end(), [&firsts](const QAction* each) {
        const QString text = plainTitle(each->text());
        const QChar first = text.isEmpty() ? QChar() : text.front().toUpper();
        const bool isNew = !firsts.contains(first);
        firsts.insert(first);
        return isNew;
    });
    std::vector<Titled> titles;
    for (const QAction* each : marked) {
        const QMenu* menu = each->menu();
        titles.push_back({plainTitle(each->text().section(beforeKeys, 0, 0)),
                          menu == nullptr ? each->objectName() : menu->objectName()});
    }
    const QStringList texts = titlesWithMnemonics(titles, taken);
    for (qsizetype place = 0; place < marked.size(); ++place) {
        const QString keys = marked[place]->text().section(beforeKeys, 1);
        marked[place]->setText(keys.isEmpty() ? texts[place] : texts[place] + beforeKeys + keys);
    }
}

/// True for a button with a title and for the label of a field.
bool hasTitle(QWidget* widget) {
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    const auto* label = qobject_cast<const QLabel*>(widget);
    return (button != nullptr && qobject_cast<const QToolButton*>(widget) == nullptr &&
            !button->text().isEmpty()) ||
           (label != nullptr && label->buddy() != nullptr);
}

QString titleOf(QWidget* widget) {
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    return button != nullptr ? button->text() : qobject_cast<const QLabel*>(widget)->text();
}

QString nameOf(QWidget* widget) {
    const auto* label = qobject_cast<const QLabel*>(widget);
    return label == nullptr ? widget->objectName() : label->buddy()->objectName();
}

void giveTitle(QWidget* widget, const QString& title) {
    if (title == titleOf(widget)) {
        return;
    }
    if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
        button->setText(title);
    } else {
        qobject_cast<QLabel*>(widget)->setText(title);
    }
}

/// True when the widget is a button that changes something.
bool isWriting(const QWidget* widget) {
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    const NSButton* model = button == nullptr ? nullptr : modelOfButton(*button);
    return model != nullptr && review::isWriting(model->action().operation);
}

void markWidgets(QList<QWidget*> widgets, QSet<QChar>& taken, const QSet<QChar>& shared) {
    // Letters may run out, so widgets with their own keys get theirs last, and the most important ones first:
    // buttons that change something, and fields.
    const auto rank = [](const QWidget* each) {
        return hasKeys(*each)                                 ? 3
               : isWriting(each)                              ? 0
               : qobject_cast<const QLabel*>(each) != nullptr ? 1
                                                              : 2;
    };
    std::ranges::stable_sort(widgets, {}, rank);
    std::vector<Titled> titles;
    for (QWidget* each : widgets) {
        const QKeySequence key = QKeySequence::mnemonic(titleOf(each));
        titles.push_back({plainTitle(titleOf(each)), nameOf(each),
                          key.isEmpty() ? QChar() : QChar(static_cast<char16_t>(key[0].key()))});
    }
    const QStringList texts = titlesWithMnemonics(titles, taken, shared);
    for (qsizetype place = 0; place < widgets.size(); ++place) {
        giveTitle(widgets[place], texts[place]);
    }
}

/// The part of the window that a widget is in: letters are assigned part by part.
enum Part { Page, InDrawer, Foot };

Part partOf(const QWidget* widget) {
    for (const QWidget* around = widget; around != nullptr; around = around->parentWidget()) {
        if (qobject_cast<const QStatusBar*>(around) != nullptr) {
            return Foot;
        }
        if (qobject_cast<const Drawer*>(around) != nullptr) {
            return InDrawer;
        }
    }
    return Page;
}

/// Returns the widgets in the window that can have a letter, in reading order.
QList<QWidget*> titledWidgets(const QWidget& window) {
    QList<QWidget*> titled = widgetsAsRead(window);
    // The note over an empty table has a button that does the same as one below the table.
    titled.removeIf(
        [](const QWidget* each) { return dynamic_cast<EmptyNote*>(each->parentWidget()) != nullptr; });
    titled.removeIf([&window](QWidget* each) { return !hasTitle(each) || !each->isVisibleTo(&window); });
    return titled;
}

void settle(QWidget& window) {
    QSet<QChar> taken;
    if (auto* menu = qobject_cast<QMenu*>(&window)) {
        QList<QAction*> actions = menu->actions();
        // An action without room in the bar is shown in a menu instead, and keeps its letter.
        actions.removeIf(standsInBar);
        markActions(actions, taken);
        return;
    }
    orderFocus(window);
    if (const auto* main = qobject_cast<const QMainWindow*>(&window)) {
        markActions(main->menuBar()->actions(), taken);
    }
    const QList<QWidget*> titled = titledWidgets(window);
    const auto mark = [&titled](Part part, QSet<QChar>& used, const QSet<QChar>& shared) {
        QList<QWidget*> standing = titled;
        standing.removeIf([part](const QWidget* each) { return partOf(each) != part; });
        markWidgets(standing, used, shared);
    };
    QSet<QChar> ofPage = taken;
    mark(Page, ofPage, {});
    ofPage -= taken;
    // There are not enough letters for both a page and the drawer beside it.
    mark(InDrawer, taken, ofPage);
    mark(Foot, taken, ofPage);
}

/// Returns the buttons and labels in the window whose letter the key press may mean.
QList<QWidget*> meantBy(const QKeySequence& key, const QWidget& window) {
    QList<QWidget*> meant = titledWidgets(window);
    meant.removeIf([&key](QWidget* each) {
        const QLabel* label = qobject_cast<const QLabel*>(each);
        const QWidget* used = label == nullptr ? each : label->buddy();
        return !used->isEnabled() || QKeySequence::mnemonic(titleOf(each)) != key;
    });
    return meant;
}

/// Does what pressing the letter of a button or label does.
void useLetterOf(QWidget& titled) {
    if (auto* button = qobject_cast<QAbstractButton*>(&titled)) {
        button->setFocus(Qt::ShortcutFocusReason);
        button->animateClick();
    } else {
        qobject_cast<QLabel*>(&titled)->buddy()->setFocus(Qt::ShortcutFocusReason);
    }
}

/// False for the desktop's file dialog, which has its own letters.
bool isOurs(const QWidget& window) {
    const Qt::WindowType type = window.windowType();
    return qobject_cast<const QMenu*>(&window) != nullptr ||
           ((type == Qt::Window || type == Qt::Dialog) &&
            qobject_cast<const QFileDialog*>(&window) == nullptr);
}

} // namespace

KeyAccess::KeyAccess() {
    QCoreApplication::instance()->installEventFilter(this);
}

bool KeyAccess::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type == QEvent::Shortcut) {
        const auto& shortcut = static_cast<const QShortcutEvent&>(*event);
        return shortcut.isAmbiguous() && useNearest(shortcut.key());
    }
    if (type == QEvent::ShortcutOverride && qobject_cast<QLineEdit*>(watched) != nullptr &&
        static_cast<QKeyEvent*>(event)->keyCombination() == QKeyCombination(Qt::CTRL, Qt::Key_E)) {
        event->ignore(); // on some desktops a field would take the menu's key as "end of line"
        return true;
    }
    const bool isOfActions = type == QEvent::ActionAdded || type == QEvent::ActionChanged;
    if (type != QEvent::Show && type != QEvent::HideToParent && type != QEvent::LayoutRequest &&
        !isOfActions) {
        return false;
    }
    auto* widget = qobject_cast<QWidget*>(watched);
    QWidget* window = widget == nullptr ? nullptr : widget->window();
    if (window == nullptr || !isOurs(*window)) {
        return false;
    }
    if (type == QEvent::Show && widget == window) {
        settle(*window); // before it is painted
    } else if (!isOfActions || widget == window || qobject_cast<QMenuBar*>(widget) != nullptr) {
        settleSoon(window);
    }
    return false;
}

bool KeyAccess::useNearest(const QKeySequence& key) {
    const QWidget* window = QApplication::activeWindow();
    const QList<QWidget*> meant = window == nullptr ? QList<QWidget*>() : meantBy(key, *window);
    if (meant.isEmpty()) {
        return false;
    }
    const QWidget* focused = QApplication::focusWidget();
    const Part here = focused == nullptr ? Page : partOf(focused);
    const auto distance = [here](const QWidget* each) {
        const Part part = partOf(each);
        return part == here ? 0 : part == Foot ? 1 : 2; // the foot shows what is new
    };
    useLetterOf(**std::ranges::min_element(meant, {}, distance));
    return true;
}

void KeyAccess::settleSoon(QWidget* window) {
    if (std::ranges::any_of(waiting_, [window](const auto& each) { return each == window; })) {
        return;
    }
    if (waiting_.empty()) {
        QTimer::singleShot(0, this, &KeyAccess::settleWaiting);
    }
    waiting_.emplace_back(window);
}

void KeyAccess::settleWaiting() {
    for (const QPointer<QWidget>& each : std::exchange(waiting_, {})) {
        if (each != nullptr && (each->isVisible() || qobject_cast<QMenu*>(each) != nullptr)) {
            settle(*each);
        }
    }
}

} // namespace frontend
