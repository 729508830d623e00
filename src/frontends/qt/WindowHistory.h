#pragma once

#include "frontends/qt/Binding.h"
#include "review/History.h"
#include "review/Reviewer.h"

#include <QMainWindow>
#include <QObject>

class QAction;
class QMenu;

/// "Undo …" and "History…" in the window's menu "Changes". Each says what would come back, and what cannot,
/// before anything is done. A child of the main window's widget.
class WindowHistory : public QObject {
  public:
    /// All but `window`, whose child it becomes, are kept. `menu` gets the items.
    WindowHistory(const review::History& history, review::Reviewer& reviewer, QMainWindow& window,
                  QMenu& menu, RefreshQueue& queue);

    /// Takes a change back after asking; none: the newest. True when something was taken back.
    bool takeBack(std::optional<std::int64_t> number, QWidget* parent);

  private:
    void nameUndo();
    void showHistory();

    const review::History& history_;
    review::Reviewer& reviewer_;
    QMainWindow& window_;
    RefreshQueue& queue_;
    QAction* undo_ = nullptr;
};
