#include "frontends/qt/ReadingOrder.h"

#include "frontends/qt/EmptyNote.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QLayout>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QScrollArea>
#include <QStatusBar>
#include <QTabBar>

#include <algorithm>

namespace frontend {

namespace {

template <class Kind>
bool isA(const QWidget& widget) {
    return qobject_cast<const Kind*>(&widget) != nullptr;
}

class Reader {
  public:
    /// Adds the contents of the widget, but not the widget itself.
    void read(const QWidget& widget);

    QList<QWidget*> widgets;

  private:
    void add(QWidget* widget) {
        if (widget != nullptr && !widget->isWindow() && !widgets.contains(widget)) {
            widgets.append(widget);
            read(*widget);
        }
    }

    void read(QLayout& layout) {
        for (int index = 0; index < layout.count(); ++index) {
            QLayoutItem* item = layout.itemAt(index);
            if (item->layout() != nullptr) {
                read(*item->layout());
            } else {
                add(item->widget());
            }
        }
    }
};

void Reader::read(const QWidget& widget) {
    if (isA<QComboBox>(widget) || isA<QLineEdit>(widget) || isA<QTabBar>(widget) || isA<QMenuBar>(widget)) {
        return; // controls handle the focus of their parts themselves
    }
    if (const auto* area = qobject_cast<const QScrollArea*>(&widget)) {
        add(area->widget());
        return;
    }
    if (isA<QAbstractScrollArea>(widget)) { // handles its scroll bars and headers itself
        for (QObject* child : widget.children()) {
            add(dynamic_cast<EmptyNote*>(child));
        }
        return;
    }
    if (const auto* main = qobject_cast<const QMainWindow*>(&widget)) {
        add(main->centralWidget()); // the bars around it come after it
    } else if (widget.layout() != nullptr && !isA<QStatusBar>(widget)) {
        read(*widget.layout());
    }
    for (QObject* child : widget.children()) {
        add(qobject_cast<QWidget*>(child));
    }
}

/// True when Tab stops at the widget while it is visible and enabled.
bool isTabStop(const QWidget* widget) {
    return (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus && widget->focusProxy() == nullptr;
}

bool isInOrder(const QList<QWidget*>& stops) {
    qsizetype met = 1;
    for (const QWidget* next = stops.constFirst()->nextInFocusChain(); next != stops.constFirst();
         next = next->nextInFocusChain()) {
        met += met < stops.size() && next == stops[met] ? 1 : 0;
    }
    return met == stops.size();
}

} // namespace

QList<QWidget*> widgetsAsRead(const QWidget& top) {
    Reader reader;
    reader.read(top);
    return reader.widgets;
}

void orderFocus(const QWidget& window) {
    QList<QWidget*> stops = widgetsAsRead(window);
    stops.removeIf([](const QWidget* each) { return !isTabStop(each); });
    if (stops.size() < 2 || isInOrder(stops)) {
        return;
    }
    for (qsizetype next = 1; next < stops.size(); ++next) {
        QWidget::setTabOrder(stops[next - 1], stops[next]);
    }
}

void focusBeginningOf(const QWidget& part) {
    QList<QWidget*> stops = widgetsAsRead(part);
    stops.removeIf(
        [](const QWidget* each) { return !isTabStop(each) || !each->isEnabled() || !each->isVisible(); });
    const auto table = std::ranges::find_if(
        stops, [](const QWidget* each) { return qobject_cast<const QAbstractItemView*>(each) != nullptr; });
    if (!stops.isEmpty()) {
        (table == stops.end() ? stops.constFirst() : *table)->setFocus(Qt::TabFocusReason);
    }
}

} // namespace frontend
