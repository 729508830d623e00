#pragma once

#include "frontends/qt/Activity.h"
#include "frontends/qt/Binding.h"

#include <QDialog>
#include <QElapsedTimer>

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>

class QLabel;
class QProgressBar;

/// Says of an action with many runs how far it has come and what is under way, with a button that ends it
/// after that. Only what takes longer than a moment is shown; the window is drawn meanwhile, and its input
/// waits.
class RunProgress {
  public:
    /// `parent` says which widget the dialog stands over. The others are kept.
    RunProgress(std::function<QWidget*()> parent, Activity& activity, RefreshQueue& queue);

    /// `stop` lets no further run of the action begin; without it there is no such button.
    void setStop(std::function<void()> stop) { stop_ = std::move(stop); }

    /// An action of that many runs is about to begin.
    void begin(std::size_t runs);
    /// A run of it begins.
    void toolWillRun(const std::string& tool, std::span<const std::string> arguments);

  private:
    void show();
    void stop();
    void end();

    std::function<QWidget*()> parent_;
    Activity& activity_;
    RefreshQueue& queue_;
    std::function<void()> stop_;
    std::unique_ptr<QDialog> dialog_; ///< null while nothing is shown
    QLabel* text_ = nullptr;
    QLabel* subject_ = nullptr;
    QProgressBar* bar_ = nullptr;
    QElapsedTimer sinceBegin_;
    QElapsedTimer sinceShown_;
    std::size_t runs_ = 0; ///< of the action under way; 0: none that is worth it
    std::size_t done_ = 0;
    platform::Connection eventEnded_;
};
