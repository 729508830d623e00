#pragma once

#include "frontends/qt/Binding.h"
#include "frontends/qt/TableModel.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"

#include <QElapsedTimer>
#include <QTableView>
#include <QTimer>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

class QMenu;

namespace frontend {

/// The widget for a table: rows of equal height, and columns that fill the width and that the header's menu
/// shows and hides.
class TableView : public QTableView {
    Q_OBJECT

  public:
    /// `nameColumn` is the identifier of the column that names a row: the selection follows the names when
    /// rows move. If it is empty, selections stay at their rows.
    TableView(NSTableView& table, const std::string& nameColumn, RefreshQueue& queue);

    /// Sets the field of the rows' editor that shows the name of the selected row.
    void setNameField(const NSTextField& field) { nameField_ = &field; }

    /// Marks the rows for which `remark` returns a text, and shows the text in their tool tips. It is called
    /// once per name, and again after each reload.
    void setRemarks(std::function<std::string(const std::string& name, int row)> remark);

    /// Shows the rows that contain the words of `text`, and the selected rows, so that nobody acts on a
    /// hidden row.
    void setFilter(const std::string& text);
    /// Hides the rows with the names that `names` returns, except selected ones. It is called again after
    /// each reload.
    void setLeftOut(std::function<std::set<std::string>()> names);

    /// Loads the rows again soon: calls `names`, and compares the selection with the rows.
    void reloadLater() { reloaded_->markDirty(); }

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
    /// Moves the selection to where the names of the selected rows are now. Deselects a row whose name is
    /// gone, and has its editor emptied.
    void followNames();
    /// Adds to `selected` the rows that now have the names in `moved`, as far as only one row has a name.
    void findRows(const std::set<std::string>& moved, std::map<int, std::string>& selected) const;
    void userSelected();
    [[nodiscard]] int firstShownColumn() const;
    [[nodiscard]] QString remarkOfRow(int row);

    NSTableView& table_;
    RefreshQueue& queue_;
    TableModel model_;
    const NSTableColumn* nameColumn_; ///< null when rows have no names
    const NSTextField* nameField_ = nullptr;
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
