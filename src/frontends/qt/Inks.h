#pragma once

#include <QColor>
#include <QPalette>

#include <optional>

class QWidget;

namespace frontend {

// The colours that the window chooses itself. Each is chosen for its background, so that it is readable with
// light, dark and high-contrast desktop colours.

/// The colours of texts.
enum class Ink {
    Warning, ///< for problems and warnings
    Note     ///< for explanations, less prominent than other texts
};

/// Returns the contrast ratio of two colours as WCAG 2 defines it, from 1 to 21.
[[nodiscard]] double contrast(const QColor& first, const QColor& second);

/// The least contrast of any text drawn here: what WCAG 2 demands for texts of any size.
inline constexpr double leastContrast = 4.5;

/// The least contrast of anything that is not a text, such as an outline.
inline constexpr double leastEdgeContrast = 3;

/// Returns the colour of the ink for a text on the palette's `ground`.
[[nodiscard]] QColor inkOn(Ink ink, const QPalette& palette, QPalette::ColorRole ground = QPalette::Window);

/// Makes the widget, which shows a text on its window's colour, draw it in that ink from now on, also after
/// the desktop changes its colours. Without an ink it gets the ordinary colour back.
void useInk(QWidget& widget, std::optional<Ink> ink);

/// Returns the colour of the placeholder in an empty field: the palette's own if it is readable.
[[nodiscard]] QColor placeholderOn(const QPalette& palette);

/// Returns the colour of an outline that is visible on the palette's window, but as unobtrusive as possible.
[[nodiscard]] QColor edgeOn(const QPalette& palette);

/// Returns the palette's highlight, changed as little as is needed to read the selected texts on it.
[[nodiscard]] QColor highlightUnder(const QPalette& palette);

/// Returns the colour of outlines that stand out, such as that of the focus: the palette's highlight, changed
/// as little as is needed to see it on the palette's window.
[[nodiscard]] QColor accentOn(const QPalette& palette);

/// Returns a shade of the window's colour for areas that should look slightly recessed.
[[nodiscard]] QColor loweredWindow(const QPalette& palette);

} // namespace frontend
