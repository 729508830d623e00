#pragma once

#include "frontends/qt/TableRows.h"
#include "platform/appkit/NSTableView.h"

#include <QAbstractTableModel>
#include <QString>

#include <functional>
#include <map>
#include <string>
#include <utility>

namespace frontend {

/// Shows a table's model. Cells are requested when they are drawn and not kept, so the length of the table
/// costs nothing until it is sorted or filtered. Qt's rows are places in the view; rowAt returns the table's
/// own rows.
class TableModel : public QAbstractTableModel {
  public:
    explicit TableModel(NSTableView& table);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// Sets the function that returns a row's remark; empty for none. It is called for rows that are drawn.
    void setRemarkOfRow(std::function<QString(int row)> remark) { remarkOfRow_ = std::move(remark); }

    /// Reloads the rows. Returns true when Qt has dropped its selection with the old rows.
    bool reload();

    /// Sorts by the column; -1 for the list's own order.
    void sort(int column, Qt::SortOrder order) override;
    void setFilter(const std::string& text);
    /// Hides the rows for which `test` returns true from now on; an empty function hides none.
    void setLeftOut(std::function<bool(int row)> test);
    /// Keeps the selected rows in view despite a filter. Returns true when it had to rearrange the rows.
    bool keepSelectedInView();

    [[nodiscard]] int rowAt(int place) const { return rows_.rowAt(place); }

    [[nodiscard]] int placeOf(int row) const { return rows_.placeOf(row); }

    /// The number of the table's rows last reported to Qt.
    [[nodiscard]] int length() const { return length_; }

  private:
    [[nodiscard]] QString remarkOf(const QModelIndex& index) const;
    void rearrange();
    [[nodiscard]] bool lacksFolder(int row) const;
    [[nodiscard]] bool looksForFolder(int row) const;

    NSTableView& table_;
    mutable std::map<int, bool> lacksFolder_; ///< for rows that were looked at since the last reload
    int length_;
    bool isArranged_ = false; ///< not in the list's own order, or not with all of its rows
    TableRows rows_;
    std::function<QString(int row)> remarkOfRow_;
};

} // namespace frontend
