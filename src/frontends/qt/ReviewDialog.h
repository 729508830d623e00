#pragma once

#include "review/Plan.h"

#include <memory>
#include <optional>
#include <string>

class QDialog;
class QWidget;

namespace frontend {

/// The question that the dialog shows above the plan, and the titles of its buttons.
struct PlanQuestion {
    std::string title; ///< the dialog's title
    std::string text;
    std::string goOn;
    std::string cancel; ///< the default button
};

/// Asks whether to perform an action. Shows its warnings, its steps in words, and under "Details" the
/// commands and the changed lines of smb.conf. "Cancel" is the default. Returns true for "Go On". With a
/// `question`, the dialog shows that as well.
[[nodiscard]] bool askAboutPlan(const review::Plan& plan, QWidget* parent,
                                const std::optional<PlanQuestion>& question = std::nullopt);

/// Makes the dialog of askAboutPlan without showing it. For pictures.
[[nodiscard]] std::unique_ptr<QDialog>
makePlanDialog(const review::Plan& plan, QWidget* parent,
               const std::optional<PlanQuestion>& question = std::nullopt);

/// Shows the plan of an action that is not going to be performed, below the title and the text of `about`.
void showPlan(const review::Plan& plan, QWidget* parent,
              const std::optional<PlanQuestion>& about = std::nullopt);

} // namespace frontend
