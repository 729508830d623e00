#include "frontends/qt/FilterField.h"

#include "frontends/qt/TableView.h"

#include <QKeyEvent>

namespace frontend {

FilterField::FilterField(TableView& table) : table_(table) {
    setPlaceholderText(localized("Filter"));
    const QString name = table.accessibleName();
    setAccessibleName(name.isEmpty() ? placeholderText() : placeholderText() + " (" + name + ')');
    setToolTip(localized("Shows only the rows that contain these words (Ctrl+F)."));
    // Add the button only when there is something to clear: its picture makes Qt load all image readers.
    connect(
        this, &QLineEdit::textChanged, this, [this] { setClearButtonEnabled(true); },
        Qt::SingleShotConnection);
    connect(this, &QLineEdit::textChanged, &table,
            [&table](const QString& text) { table.setFilter(text.toStdString()); });
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

} // namespace frontend
