#pragma once

#include "frontends/qt/Binding.h"
#include "frontends/qt/TableRows.h"
#include "platform/appkit/NSTableView.h"

#include <QAbstractTableModel>
#include <QElapsedTimer>
#include <QTableView>
#include <QTimer>

class QMenu;

#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

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

/// The widget for a table: rows of equal height, and columns that fill the width and that the header's menu
/// shows and hides.
class TableView : public QTableView {
    Q_OBJECT

  public:
    /// `nameColumn` is the identifier of the column that names a row: when a selected row gets another name,
    /// the selection is cleared. If it is empty, selections stay at their rows.
    TableView(NSTableView& table, const std::string& nameColumn, RefreshQueue& queue);

    /// Marks the rows for which `remark` returns a text, and shows the text in their tool tips. It is called
    /// once per name, and again after each reload.
    void setRemarks(std::function<std::string(const std::string& name, int row)> remark);

    /// Shows the rows that contain the words of `text`, and the selected rows, so that nobody acts on a
    /// hidden row.
    void setFilter(const std::string& text);
    /// Hides the rows with the names that `names` returns, except selected ones. It is called again after
    /// each reload.
    void setLeftOut(std::function<std::set<std::string>()> names);

    /// Calls `names` again.
    void leaveOutAgain() { reloaded_->markDirty(); }

    [[nodiscard]] const std::string& filter() const { return filter_; }

    /// Moves the focus to the rows, and selects the first one if none is selected.
    void goOnInRows();

    /// Returns the selected rows in view as text, with the columns as shown and one line per row.
    [[nodiscard]] QString textOfSelection() const;

    /// Goes to the row that begins with the text, as if it had been typed.
    void keyboardSearch(const QString& search) override;

  Q_SIGNALS:
    /// The user wants to edit, or to delete, the selected row.
    void editAsked();
    void deletionAsked();
    /// The menu of a row is about to open and can be extended. `row` is the table's own row number.
    void menuAsked(QMenu& menu, int row);

  public:
    /// Compares the selection with the rows again soon. For use when a sheet for the selected row has closed.
    void checkSelectionLater() { reloaded_->markDirty(); }

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    void fillColumnMenu(QMenu& menu);
    void fillOrderMenu(QMenu& menu);
    void copySelection() const;
    void restoreColumns();
    void rememberColumns() const;
    [[nodiscard]] std::string settingsKey() const;
    void setUpHeader();
    void shareWidth();
    /// Returns the width that the column's title needs.
    [[nodiscard]] int leastWidth(int section) const;
    /// Returns the width that the title and the first rows need.
    [[nodiscard]] int neededWidth(int section);
    void showColumnMenu(const QPoint& position);
    void reload();
    void loadSelection();
    /// Deselects rows that now have another name, and has the editor of a row that is gone emptied.
    void dropVanishedRows();
    void userSelected();
    [[nodiscard]] int firstShownColumn() const;
    [[nodiscard]] QString remarkOfRow(int row);

    NSTableView& table_;
    RefreshQueue& queue_;
    TableModel model_;
    const NSTableColumn* nameColumn_ = nullptr;
    Binding* reloaded_ = nullptr;
    std::function<std::set<std::string>()> namesLeftOut_;
    std::string filter_;
    std::map<int, std::string> namesOfSelected_; ///< the selected rows and their names at the last check
    std::function<std::string(const std::string&, int)> remark_;
    std::map<std::string, QString> remarks_; ///< by row name, since the last reload
    std::vector<int> shownSelection_; ///< the selection last loaded into the widget, or last made in it
    QTimer remembering_;              ///< runs while the user arranges the columns
    QString typed_;                   ///< the text typed to find a row
    QElapsedTimer typedWhen_;
    bool loading_ = false;
    bool widthsAreUsers_ = false;     ///< the user has set a column's width, so leave all of them alone
    std::map<int, int> neededWidths_; ///< by section, as far as they were asked for since the rows changed
};

} // namespace frontend
