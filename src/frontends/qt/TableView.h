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

/// Shows a table's model. Cells are asked for when they are drawn and not kept, so the length of the table
/// costs nothing until it is sorted or filtered. Qt's rows are places in the view; the table's own rows are
/// what rowAt says.
class TableModel : public QAbstractTableModel {
  public:
    explicit TableModel(NSTableView& table);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// What a row is marked for, asked for rows that are drawn; an empty string means no mark.
    void setRemarkOfRow(std::function<QString(int row)> remark) { remarkOfRow_ = std::move(remark); }

    /// The rows have changed. True when Qt has dropped its selection with the old ones.
    bool reload();

    /// Sorts by the column; -1 is the order of the list.
    void sort(int column, Qt::SortOrder order) override;
    void setFilter(const std::string& text);
    /// Leaves out of view the rows that `test` names from now on; none: no row.
    void setLeftOut(std::function<bool(int row)> test);
    /// Has the selected rows in view, which a filter may not take. True when it had to rearrange.
    bool keepSelectedInView();

    [[nodiscard]] int rowAt(int place) const { return rows_.rowAt(place); }

    [[nodiscard]] int placeOf(int row) const { return rows_.placeOf(row); }

    /// The number of the table's rows, as last reported to Qt.
    [[nodiscard]] int length() const { return length_; }

  private:
    [[nodiscard]] QString remarkOf(const QModelIndex& index) const;
    void rearrange();
    [[nodiscard]] bool lacksFolder(int row) const;
    [[nodiscard]] bool looksForFolder(int row) const;

    NSTableView& table_;
    mutable std::map<int, bool> lacksFolder_; ///< of rows that were looked at since the last reload
    int length_;
    bool isArranged_ = false; ///< not in the list's own order, or not with all of its rows
    TableRows rows_;
    std::function<QString(int row)> remarkOfRow_;
};

/// The widget of a table: rows of one height, columns that use the room and that the header's menu shows and
/// hides.
class TableView : public QTableView {
    Q_OBJECT

  public:
    /// `nameColumn` is the identifier of the column that names a row: when other rows come under a selection,
    /// it is removed. Empty: a selection stays where it is.
    TableView(NSTableView& table, const std::string& nameColumn, RefreshQueue& queue);

    /// Marks the rows of whose name `remark` has something to say, which their tool tips say; asked once a
    /// name from now on, and again after each reload.
    void setRemarks(std::function<std::string(const std::string& name, int row)> remark);

    /// Shows the rows in which the words of `text` occur, and the selected ones, so that nobody acts on a row
    /// that is out of sight.
    void setFilter(const std::string& text);
    /// Leaves rows out of view, but for selected ones: those whose name is among what `names` returns, which
    /// is asked again after each reload.
    void setLeftOut(std::function<std::set<std::string>()> names);

    /// Asks it now.
    void leaveOutAgain() { reloaded_->markDirty(); }

    [[nodiscard]] const std::string& filter() const { return filter_; }

    /// Puts the cursor into the rows, on the first where none is selected.
    void goOnInRows();

    /// The rows in view that are selected, column by column as they are shown, a line a row.
    [[nodiscard]] QString textOfSelection() const;

    /// Searches the rows for one that begins so, as if it had been typed.
    void keyboardSearch(const QString& search) override;

  Q_SIGNALS:
    /// A user asks for the editor of the selected row, or for the row's deletion.
    void editAsked();
    void deletionAsked();
    /// The menu of a row is about to come up and takes further entries. `row` is the table's own.
    void menuAsked(QMenu& menu, int row);

  public:
    /// Compares the selection with the rows again soon: a sheet that works on the selected row has gone.
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
    /// What the column's title needs.
    [[nodiscard]] int leastWidth(int section) const;
    /// What that and the first rows in view need.
    [[nodiscard]] int neededWidth(int section) const;
    void showColumnMenu(const QPoint& position);
    void reload();
    void loadSelection();
    void dropRenamedRows();
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
    std::map<int, std::string> namesOfSelected_; ///< the selected rows and their names, as of the last look
    std::function<std::string(const std::string&, int)> remark_;
    std::map<std::string, QString> remarks_; ///< by row name, as of the last reload
    std::vector<int> shownSelection_;        ///< the selection that the widget was given last, or gave
    QTimer remembering_;                     ///< runs while the user arranges the columns
    QString typed_;                          ///< what was typed to find a row
    QElapsedTimer typedWhen_;
    bool loading_ = false;
    bool widthsAreUsers_ = false; ///< the user has set a column's width: leave all of them alone
};
