#pragma once

#include "frontends/qt/Binding.h"
#include "frontends/qt/WindowActions.h"

#include <QWidget>

class QLabel;
class QPushButton;

namespace frontend {

class TableView;

/// Covers a table that shows no rows. It says what the table is for, with a button to begin; or that the list
/// could not be read; or that nothing matches the filter. A child of the table's widget.
class EmptyNote : public QWidget {
  public:
    /// `node` is the table's node, with the attribute `empty`. `node` and `actions` must outlive this object.
    EmptyNote(const platform::InterfaceNode& node, TableView& view, WindowActions& actions,
              RefreshQueue& queue);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void place();
    void follow();

    const platform::InterfaceNode& node_;
    TableView& view_;
    QLabel* text_ = nullptr;
    QPushButton* button_ = nullptr; ///< null when there is none
};

} // namespace frontend
