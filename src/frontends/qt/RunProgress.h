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

/// Says of an action with many runs how far it has come and what is under way. Only what takes longer than a
/// moment is shown; the window is drawn meanwhile, and its input waits. What works on many objects has a
/// button that ends it after one of them: half a share is worse than to wait.
class RunProgress {
  public:
    /// `parent` says which widget the dialog stands over. The others are kept.
    RunProgress(std::function<QWidget*()> parent, Activity& activity, RefreshQueue& queue);
    ~RunProgress();
    RunProgress(const RunProgress&) = delete;
    RunProgress& operator=(const RunProgress&) = delete;

    /// `stop` lets no further run of the action begin, but for the one that is announced where that is
    /// `madeStill`; without it there is no such button.
    void setStop(std::function<void(bool madeStill)> stop) { stop_ = std::move(stop); }

    /// An action of that many runs is about to begin.
    void begin(std::size_t runs, review::Stops stops);
    /// A run of it begins. False: it is not made, because the user has stopped the action before.
    bool toolWillRun(const std::string& tool, std::span<const std::string> arguments);
    /// The user was asked something on the way.
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
    QElapsedTimer sinceBegin_; ///< of the work: it is not the user who is waited for
    QElapsedTimer sinceShown_;
    std::size_t runs_ = 0; ///< of the action under way; 0: none that is worth it
    std::size_t done_ = 0; ///< with the one that is announced
    review::Stops stops_ = review::Stops::Nowhere;
    std::string object_; ///< that the last run was for
    bool stopsSoon_ = false;
    bool isStopped_ = false;
    platform::Connection eventEnded_;
};
