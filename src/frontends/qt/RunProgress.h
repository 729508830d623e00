#pragma once

#include "frontends/qt/Activity.h"
#include "frontends/qt/Binding.h"
#include "review/Operations.h"

#include <QElapsedTimer>

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>

class QLabel;
class QProgressBar;
class QWidget;

namespace frontend {

/// Shows how far an action with many runs has come, and what it is doing. It appears only when the action
/// takes longer than a moment. Meanwhile the window is redrawn but takes no input. An action on many objects
/// gets a button that stops it between two objects: leaving one half done would be worse than waiting.
class RunProgress {
  public:
    /// `parent` returns the widget to show the dialog over. `activity` and `queue` must outlive this object.
    RunProgress(std::function<QWidget*()> parent, Activity& activity, RefreshQueue& queue);
    ~RunProgress();
    RunProgress(const RunProgress&) = delete;
    RunProgress& operator=(const RunProgress&) = delete;

    /// Sets the function that lets no further run of the action begin. With `madeStill`, the run that was
    /// just announced is still made. Without `stop` there is no button.
    void setStop(std::function<void(bool madeStill)> stop) { stop_ = std::move(stop); }

    /// Says that an action of that many runs is about to begin.
    void begin(std::size_t runs, review::Stops stops);
    /// Says that a run of it is about to begin. Returns false when the user has stopped the action: the run
    /// is then not made.
    bool toolWillRun(const std::string& tool, std::span<const std::string> arguments);
    /// Says that the user was asked something during the action.
    void wasInterrupted();

  private:
    class Dialog;

    void show();
    void stop();
    void stopNow(bool madeStill);
    void end();

    std::function<QWidget*()> parent_;
    Activity& activity_;
    RefreshQueue& queue_;
    std::function<void(bool)> stop_;
    std::unique_ptr<Dialog> dialog_; ///< null while nothing is shown
    QLabel* text_ = nullptr;
    QLabel* subject_ = nullptr;
    QProgressBar* bar_ = nullptr;
    QElapsedTimer sinceBegin_; ///< excludes the time spent waiting for the user
    QElapsedTimer sinceShown_;
    std::size_t runs_ = 0; ///< of the current action; 0 when there is none that needs progress
    std::size_t done_ = 0; ///< including the one that was announced
    review::Stops stops_ = review::Stops::Nowhere;
    std::string object_; ///< the object of the last run
    bool stopsSoon_ = false;
    bool isStopped_ = false;
    platform::Connection eventEnded_;
};

} // namespace frontend
