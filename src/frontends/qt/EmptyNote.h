#pragma once

#include "frontends/qt/Binding.h"
#include "frontends/qt/WindowActions.h"

#include <QWidget>

class QLabel;
class QPushButton;
class TableView;

/// Lies over a table in which no row is in view: says what the table is for, with the button that begins, or
/// that the list could not be read, or that the filter takes no row. A child of the table's widget.
class EmptyNote : public QWidget {
  public:
    /// `node` is the table's, with the attribute `empty`; both it and `actions` outlive this.
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
    QPushButton* button_ = nullptr; ///< null where there is none
};
