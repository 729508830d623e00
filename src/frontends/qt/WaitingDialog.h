#pragma once

#include "frontends/qt/Binding.h"
#include "platform/foundation/Services.h"

#include <QDialog>

#include <functional>
#include <memory>

namespace frontend {

/// Shows which program Brindle is waiting for, with a button that ends the wait. It appears only when the
/// wait takes longer than a moment. The window is neither used nor redrawn meanwhile, because an action is in
/// progress.
class WaitingDialog : public platform::Patience {
  public:
    /// `parent` returns the widget to show the dialog over. `queue` must outlive this object.
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

} // namespace frontend
