#pragma once

#include "platform/appkit/NSControl.h"

#include <string>
#include <string_view>
#include <vector>

class NSTableView;

struct NSTableColumn {
    std::string identifier;
    std::string title;
    int width = 100;          ///< in points, the initial width in a front-end
    bool hidden = false;      ///< a window does not show it initially; it is still one of the columns
    std::string display = {}; ///< how a window shows the values, which do not change; see InterfaceTable.h
};

/// Where a table's rows come from. Not owned by the table.
class NSTableViewDataSource {
  public:
    virtual ~NSTableViewDataSource() = default;
    [[nodiscard]] virtual int numberOfRowsInTableView(NSTableView* table) = 0;
    /// The cell's text. Called only for cells that are shown.
    [[nodiscard]] virtual std::string
    tableViewObjectValueForTableColumn(NSTableView* table, const NSTableColumn& column, int row) = 0;
};

class NSTableViewDelegate {
  public:
    virtual ~NSTableViewDelegate() = default;
    /// The selection of `table` has changed, by the user or the program.
    virtual void tableViewSelectionDidChange(NSTableView* table) = 0;
};

/// A table. Of its rows it knows only how many its source had at the last reload, and which are selected.
/// Rows are numbered from 0.
class NSTableView : public NSControl {
  public:
    [[nodiscard]] const std::vector<NSTableColumn>& tableColumns() const { return columns_; }

    void addTableColumn(NSTableColumn column);

    /// Null when there is none.
    [[nodiscard]] const NSTableColumn* tableColumnWithIdentifier(std::string_view identifier) const;

    void setDataSource(NSTableViewDataSource* source) { source_ = source; }

    void setDelegate(NSTableViewDelegate* delegate) { delegate_ = delegate; }

    [[nodiscard]] bool allowsMultipleSelection() const { return multiple_; }

    void setAllowsMultipleSelection(bool allows) { multiple_ = allows; }

    /// The number at the last reload; 0 before the first.
    [[nodiscard]] int numberOfRows() const { return rows_; }

    [[nodiscard]] bool isLoaded() const { return isLoaded_; }

    /// The cell's text as the source has it now; "" without a source or for a row that is not there.
    [[nodiscard]] std::string objectValue(const NSTableColumn& column, int row);

    /// Asks the source for the number of rows again. Selected row numbers that still exist stay selected, the
    /// others are dropped, and nobody is notified. Emits `reloaded`.
    void reloadData();

    /// The selected row (the first of several), or -1.
    [[nodiscard]] int selectedRow() const { return selection_.empty() ? -1 : selection_.front(); }

    /// Ascending.
    [[nodiscard]] const std::vector<int>& selectedRows() const { return selection_; }

    /// Selects exactly these rows, given in any order. Rows that do not exist are ignored, and if the table
    /// does not allow several, only the first counts. Tells the delegate, unless the selection stays the
    /// same.
    void selectRows(std::vector<int> rows);

    /// Selects only this row; selects nothing when it does not exist.
    void selectRow(int row) { selectRows({row}); }

    void deselectAll() { selectRows({}); }

    /// The selected rows that reloads have dropped since the last selection.
    [[nodiscard]] const std::vector<int>& droppedRows() const { return dropped_; }

    /// Selects these rows, as where those that were selected have moved to. Tells nobody, because the same
    /// is selected.
    void moveSelection(std::vector<int> rows);

    /// Tells the delegate if a reload has dropped every selected row, and no selection was made since. For
    /// front-ends whose user would otherwise still see that row in its editor.
    void tellOfDroppedSelection();

    void copyState(const Element& from) override;

    /// The rows have to be drawn again. `changed` stands for the selection and the enabled state.
    platform::Signal<> reloaded;

  private:
    std::vector<NSTableColumn> columns_;
    NSTableViewDataSource* source_ = nullptr;
    NSTableViewDelegate* delegate_ = nullptr;
    bool multiple_ = false;
    int rows_ = 0;
    bool isLoaded_ = false; ///< its rows have been asked for
    std::vector<int> selection_;
    std::vector<int> dropped_; ///< by reloads, and the delegate was not told
};
