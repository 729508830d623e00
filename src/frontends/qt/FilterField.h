#pragma once

#include <QLineEdit>

class TableView;

/// The field above a table that leaves only the rows with certain words in view. Ctrl+F leads to it, Escape
/// empties it and goes back to the table, Down and Return go on in the rows that are left.
class FilterField : public QLineEdit {
    Q_OBJECT

  public:
    /// Filters `table`, which outlives it or goes with it.
    explicit FilterField(TableView& table);

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    TableView& table_;
};
