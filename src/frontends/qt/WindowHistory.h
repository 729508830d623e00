#pragma once

#include "frontends/qt/Binding.h"
#include "frontends/qt/UnsavedEdits.h"
#include "review/History.h"
#include "review/Reviewer.h"

#include <QMainWindow>
#include <QObject>

#include <cstddef>
#include <functional>
#include <utility>

class QAction;
class QMenu;

namespace frontend {

/// "Undo …" and "History…" in the window's menu "Changes". Both say what would be restored, and what cannot
/// be, before anything is done. A child of the main window's widget.
class WindowHistory : public QObject {
  public:
    /// Becomes a child of `window`, and adds its items to `menu`. The other arguments must outlive this
    /// object.
    WindowHistory(const review::History& history, review::Reviewer& reviewer, UnsavedEdits& edits,
                  QMainWindow& window, QMenu& menu, RefreshQueue& queue);

    /// `allowed` is called with the number of runs of an undo that is about to begin.
    void setAllowed(std::function<void(std::size_t runs)> allowed) { allowed_ = std::move(allowed); }

    /// Takes a change back after asking; without a number, the newest.
    void takeBack(std::optional<std::int64_t> number, QWidget* parent);

  private:
    /// Adds to the plan what the undo cannot restore, and which unsaved edits it loses.
    void addWarnings(const review::UndoPlan& undo, review::Plan* plan) const;
    void nameUndo();
    void showHistory();

    const review::History& history_;
    review::Reviewer& reviewer_;
    UnsavedEdits& edits_;
    QMainWindow& window_;
    RefreshQueue& queue_;
    QAction* undo_ = nullptr;
    std::function<void(std::size_t)> allowed_;
};

} // namespace frontend
