#pragma once

#include <QRect>
#include <QSize>

#include <vector>

class QWidget;

/// The size as far as the window's screen has room for it, with its frame.
[[nodiscard]] QSize fittedToScreen(const QWidget& window, QSize wanted);

/// Where a window that stood at `place` is shown on screens with these free areas, of which the first is the
/// main one: where it stood as long as its title can be got hold of there, else in the middle of the main
/// one; never larger than the screen.
[[nodiscard]] QRect placeInView(QRect place, const std::vector<QRect>& screens);
