#pragma once

#include "frontends/qt/Binding.h"
#include "platform/foundation/Services.h"

#include <QDialog>

#include <functional>
#include <memory>

/// Says on screen which program is waited for, with a button that ends the wait. Only what takes longer than
/// a moment is shown, and nothing of the window is used or drawn meanwhile: an action stands in its middle.
class WaitingDialog : public platform::Patience {
  public:
    /// `parent` says which widget the dialog stands over. `queue` outlives this.
    WaitingDialog(std::function<QWidget*()> parent, RefreshQueue& queue)
        : parent_(std::move(parent)), queue_(queue) {}

    [[nodiscard]] bool keepWaiting(double seconds) override;
    void waitHasEnded() override;

  private:
    void show(const std::string& holder);

    std::function<QWidget*()> parent_;
    RefreshQueue& queue_;
    std::unique_ptr<QDialog> dialog_; ///< null while nothing is shown
};
