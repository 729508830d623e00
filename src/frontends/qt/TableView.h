#pragma once

#include "frontends/qt/Binding.h"
#include "platform/appkit/NSTableView.h"

#include <QAbstractTableModel>
#include <QTableView>

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

/// Shows a table's model. Cells are asked for when they are drawn and never kept, so the length of the table
/// costs nothing.
class TableModel : public QAbstractTableModel {
  public:
    explicit TableModel(NSTableView& table);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// What a row is marked for, asked for rows that are drawn; an empty string means no mark.
    void setRemarkOfRow(std::function<QString(int row)> remark) { remarkOfRow_ = std::move(remark); }

    /// The rows have changed. True when the number of rows has changed.
    bool reload();

  private:
    NSTableView& table_;
    int rows_; ///< as last reported to Qt
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

    /// Compares the selection with the rows again soon: a sheet that works on the selected row has gone.
    void checkSelectionLater() { reloaded_->markDirty(); }

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void setUpHeader();
    void shareWidth();
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
    std::map<int, std::string> namesOfSelected_; ///< the selected rows and their names, as of the last look
    std::function<std::string(const std::string&, int)> remark_;
    std::map<std::string, QString> remarks_; ///< by row name, as of the last reload
    std::vector<int> shownSelection_;        ///< the selection that the widget was given last, or gave
    bool loading_ = false;
    bool widthsAreUsers_ = false; ///< the user has set a column's width: leave all of them alone
};
