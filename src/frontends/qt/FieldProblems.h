#pragma once

#include "frontends/qt/Binding.h"
#include "platform/appkit/Interface.h"

#include <QLabel>
#include <QWidget>

#include <string>

namespace frontend {

/// Makes a label that shows what is wrong with the field that `widget` is or contains, and is hidden when
/// nothing is wrong. Null when there is no such field. The caller owns it.
[[nodiscard]] QLabel* makeProblemNote(QWidget& widget);

/// Switches to the page that shows the control with that name, if a pop-up selects the pages.
void showPageOf(const std::string& control, const platform::Interface& interface, RefreshQueue& queue);

} // namespace frontend
