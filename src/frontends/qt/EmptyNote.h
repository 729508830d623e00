#pragma once

#include "frontends/qt/Binding.h"
#include "frontends/qt/WindowActions.h"
#include "platform/appkit/NSTableView.h"

#include <QAbstractScrollArea>
#include <QWidget>

/// Lies over a table without rows: says what the table is for, and has the button that begins. A child of the
/// table's widget.
class EmptyNote : public QWidget {
  public:
    /// `node` is the table's, with the attribute `empty`; both it and `actions` outlive this.
    EmptyNote(const platform::InterfaceNode& node, QAbstractScrollArea& view, WindowActions& actions,
              RefreshQueue& queue);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void place();

    QAbstractScrollArea& view_;
};
