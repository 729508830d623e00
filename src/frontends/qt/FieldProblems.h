#pragma once

#include "frontends/qt/Binding.h"
#include "platform/appkit/Interface.h"

#include <QLabel>
#include <QWidget>

#include <string>

/// A label that shows what is wrong with the field that `widget` is or holds, and is hidden where nothing is.
/// Null when it holds none. The caller's.
[[nodiscard]] QLabel* makeProblemNote(QWidget& widget);

/// Turns to the page that shows the control of that name, where a menu picks the pages.
void showPageOf(const std::string& control, const platform::Interface& interface, RefreshQueue& queue);
