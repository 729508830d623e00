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

/// "Undo …" and "History…" in the window's menu "Changes". Each says what would come back, and what cannot,
/// before anything is done. A child of the main window's widget.
class WindowHistory : public QObject {
  public:
    /// All but `window`, whose child it becomes, are kept. `menu` gets the items.
    WindowHistory(const review::History& history, review::Reviewer& reviewer, WindowActions& actions,
                  QMainWindow& window, QMenu& menu, RefreshQueue& queue);

    /// `allowed` is told how many runs an undo that may begin now will make.
    void setAllowed(std::function<void(std::size_t runs)> allowed) { allowed_ = std::move(allowed); }

    /// The operation has changed what stands on its page.
    void noteSaved(const std::string& operation) { edits_.noteSaved(operation); }

    /// Takes a change back after asking; none: the newest. True when something was taken back.
    bool takeBack(std::optional<std::int64_t> number, QWidget* parent);

  private:
    void nameUndo();
    void showHistory();

    const review::History& history_;
    review::Reviewer& reviewer_;
    UnsavedEdits edits_;
    QMainWindow& window_;
    RefreshQueue& queue_;
    QAction* undo_ = nullptr;
    std::function<void(std::size_t)> allowed_;
};
