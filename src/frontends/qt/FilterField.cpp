#include "frontends/qt/FilterField.h"

#include "frontends/qt/TableView.h"
#include "platform/foundation/NSBundle.h"

#include <QKeyEvent>
#include <QShortcut>

FilterField::FilterField(TableView& table) : table_(table) {
    setPlaceholderText(shown(NSLocalizedString("Filter")));
    setAccessibleName(placeholderText());
    setToolTip(shown(NSLocalizedString("Leaves the rows in view in which these words occur (Ctrl+F).")));
    setClearButtonEnabled(true);
    connect(this, &QLineEdit::textChanged, &table,
            [&table](const QString& text) { table.setFilter(text.toStdString()); });
    auto* find = new QShortcut(QKeySequence::Find, this);
    // Two tables may stand on a page: the key leads from one field to the other.
    for (const auto signal : {&QShortcut::activated, &QShortcut::activatedAmbiguously}) {
        connect(find, signal, this, [this] {
            setFocus(Qt::ShortcutFocusReason);
            selectAll();
        });
    }
}

void FilterField::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Escape:
        clear();
        table_.setFocus();
        return;
    case Qt::Key_Down:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        table_.goOnInRows();
        return;
    default:
        QLineEdit::keyPressEvent(event);
    }
}
