#pragma once

#include <QRect>
#include <QSize>

#include <vector>

class QWidget;

namespace frontend {

/// From now on windows get the size that they want: pictures of them are not limited by a screen.
void forgetScreenSize();

/// Returns the wanted size, limited so that the window and its frame fit on its screen.
[[nodiscard]] QSize fittedToScreen(const QWidget& window, QSize wanted);

/// Returns where to show a window that was last at `place`, on screens with these free areas; the first one
/// is the main screen's. It is the same place if its title can be reached there, else the middle of the main
/// screen. The window is never larger than the screen.
[[nodiscard]] QRect placeInView(QRect place, const std::vector<QRect>& screens);

} // namespace frontend
