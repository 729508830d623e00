#pragma once

#include "review/Plan.h"

#include <memory>

class QDialog;
class QWidget;

/// Asks whether an action is to be performed: its warnings, its steps in words, and behind "Details" the
/// commands and the lines of smb.conf that change. "Cancel" is the default. True for "Go On".
[[nodiscard]] bool askAboutPlan(const review::Plan& plan, QWidget* parent);

/// The dialog of askAboutPlan, not on screen yet. For pictures.
[[nodiscard]] std::unique_ptr<QDialog> makePlanDialog(const review::Plan& plan, QWidget* parent);

/// Shows the same of an action that is not performed, whatever it holds.
void showPlan(const review::Plan& plan, QWidget* parent);
