#include "frontends/qt/TableView.h"

#include "platform/appkit/NSApplication.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QMenu>

namespace frontend {

// What a user does with a table's rows apart from selecting them: finding and copying them, and asking for
// actions on them.

void TableView::setFilter(const std::string& text) {
    filter_ = text;
    loading_ = true;
    model_.setFilter(text);
    loading_ = false;
    shownSelection_.clear();
    loadSelection();
}

void TableView::goOnInRows() {
    setFocus();
    if (!selectionModel()->hasSelection() && model_.rowCount() > 0) {
        setCurrentIndex(model_.index(0, firstShownColumn()));
    }
}

void TableView::keyboardSearch(const QString& search) {
    constexpr int pause = 1000; // milliseconds after which typing begins a new name
    typed_ = typedWhen_.isValid() && !typedWhen_.hasExpired(pause) ? typed_ + search : search;
    typedWhen_.start();
    const std::string beginning = foldedText(typed_.toStdString());
    const int rows = model_.rowCount();
    const NSTableColumn& names =
        nameColumn_ != nullptr
            ? *nameColumn_
            : table_.tableColumns()[static_cast<std::size_t>(std::max(0, currentIndex().column()))];
    // The first letter searches after the current row; further letters include it.
    const int first = currentIndex().isValid() ? currentIndex().row() + (typed_ == search ? 1 : 0) : 0;
    for (int step = 0; step < rows; ++step) {
        const int place = (first + step) % rows;
        if (foldedText(table_.objectValue(names, model_.rowAt(place))).starts_with(beginning)) {
            setCurrentIndex(model_.index(place, firstShownColumn()));
            return;
        }
    }
}

QString TableView::textOfSelection() const {
    QString text;
    const QHeaderView* header = horizontalHeader();
    for (int place = 0; place < model_.rowCount(); ++place) {
        if (!selectionModel()->isRowSelected(place)) {
            continue;
        }
        QStringList cells;
        for (int at = 0; at < header->count(); ++at) {
            const int section = header->logicalIndex(at);
            if (!isColumnHidden(section)) {
                cells += model_.index(place, section).data().toString();
            }
        }
        text += cells.join(QLatin1Char('\t')) + QLatin1Char('\n');
    }
    return text;
}

void TableView::copySelection() const {
    if (selectionModel()->hasSelection()) {
        QGuiApplication::clipboard()->setText(textOfSelection());
    }
}

void TableView::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->matches(QKeySequence::Copy)) {
        copySelection();
    } else if (isReturn && selectionModel()->hasSelection()) {
        Q_EMIT editAsked();
    } else if (event->key() == Qt::Key_Delete && selectionModel()->hasSelection()) {
        Q_EMIT deletionAsked();
    } else if (event->key() == Qt::Key_Down && (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier &&
               !selectionModel()->hasSelection() && currentIndex().row() <= 0) {
        goOnInRows(); // Qt's current row is already the first one, so Down would skip it
    } else {
        QTableView::keyPressEvent(event);
    }
}

void TableView::mouseDoubleClickEvent(QMouseEvent* event) {
    QTableView::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton && indexAt(event->position().toPoint()).isValid()) {
        Q_EMIT editAsked();
    }
}

void TableView::contextMenuEvent(QContextMenuEvent* event) {
    const QModelIndex current = currentIndex();
    const bool isKey = event->reason() == QContextMenuEvent::Keyboard;
    QMenu menu(this);
    menu.setObjectName(objectName() + QLatin1String("Menu"));
    if (selectionModel()->hasSelection() && (!isKey || current.isValid())) {
        const int place = selectionModel()->selectedRows().constFirst().row();
        Q_EMIT menuAsked(menu, model_.rowAt(place));
        menu.addAction(localized("Copy"), QKeySequence(QKeySequence::Copy), this,
                       [this] { copySelection(); });
        menu.addSeparator();
    }
    fillOrderMenu(*menu.addMenu(localized("Sort By")));
    fillColumnMenu(*menu.addMenu(localized("Columns")));
    const QPoint position = isKey && current.isValid() ? viewport()->mapToGlobal(visualRect(current).center())
                                                       : event->globalPos();
    menu.exec(position);
}

} // namespace frontend
