#pragma once

#include "review/Plan.h"

#include <memory>
#include <optional>
#include <string>

class QDialog;
class QWidget;

/// What the dialog asks above the plan, and the titles of its buttons.
struct PlanQuestion {
    std::string title; ///< of the dialog
    std::string text;
    std::string goOn;
    std::string cancel; ///< the default
};

/// Asks whether an action is to be performed: its warnings, its steps in words, and under "Details" the
/// commands and the lines of smb.conf that change. "Cancel" is the default. True for "Go On". With a question
/// of its own the dialog asks that, too.
[[nodiscard]] bool askAboutPlan(const review::Plan& plan, QWidget* parent,
                                const std::optional<PlanQuestion>& question = std::nullopt);

/// The dialog of askAboutPlan, not on screen yet. For pictures.
[[nodiscard]] std::unique_ptr<QDialog>
makePlanDialog(const review::Plan& plan, QWidget* parent,
               const std::optional<PlanQuestion>& question = std::nullopt);

/// Shows the same of an action that is not performed, whatever it holds.
void showPlan(const review::Plan& plan, QWidget* parent);
