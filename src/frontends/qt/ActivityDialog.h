#pragma once

#include "frontends/qt/Activity.h"

#include <QAbstractTableModel>
#include <QDialog>

class QPlainTextEdit;
class QTableView;

namespace frontend {

/// The rows of an activity, the newest last. Cells are made when they are drawn.
class ActivityModel : public QAbstractTableModel {
  public:
    explicit ActivityModel(const Activity& activity) : activity_(activity) {}

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// Returns the entry of the row, or null.
    [[nodiscard]] const ActivityEntry* entry(int row) const;

    /// Adds the entries that are new since the last call, and removes those that were dropped.
    void update();

  private:
    const Activity& activity_;
    std::size_t dropped_ = 0; ///< entries before the first row
    int rows_ = 0;
};

/// The panel that lists every run, log line and beep with its time, outcome and output. It stays open beside
/// the window.
class ActivityDialog : public QDialog {
  public:
    ActivityDialog(const Activity& activity, QWidget* parent);

    /// Shows what has happened since the last call.
    void reload();

  private:
    void showCurrent();
    void saveAsText();

    const Activity& activity_;
    ActivityModel model_;
    QTableView* table_ = nullptr;
    QPlainTextEdit* details_ = nullptr;
};

} // namespace frontend
