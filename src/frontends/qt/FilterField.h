#pragma once

#include <QLineEdit>

namespace frontend {

class TableView;

/// The field above a table that shows only the rows with certain words. Ctrl+F moves the focus to it, Escape
/// empties it and returns to the table, Down and Return move to the rows that are left.
class FilterField : public QLineEdit {
    Q_OBJECT

  public:
    /// Filters `table`, which must not be destroyed before this field.
    explicit FilterField(TableView& table);

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    TableView& table_;
};

} // namespace frontend
