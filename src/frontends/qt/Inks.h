#pragma once

#include <QIcon>
#include <QPalette>

#include <optional>

class QWidget;

// The colours that the window chooses itself, beside those that the desktop gives it. Each is chosen for what
// is behind it, so that it can be read in light, dark and high-contrast colours alike.

/// What a text is drawn in.
enum class Ink {
    Warning, ///< what stops or should be looked at
    Note     ///< what explains, and stands back
};

/// How well two colours can be told apart, from 1 to 21, by the luminances of WCAG 2.
[[nodiscard]] double contrast(const QColor& first, const QColor& second);

/// The least contrast of what is drawn here, as WCAG 2 wants it of texts of any size.
inline constexpr double leastContrast = 4.5;

/// The same of what is no text, as an outline.
inline constexpr double leastEdgeContrast = 3;

/// The ink for a text on the palette's `ground`.
[[nodiscard]] QColor inkOn(Ink ink, const QPalette& palette, QPalette::ColorRole ground = QPalette::Window);

/// Has the widget, which shows a text on its window's colour, draw it in that ink from now on, also when the
/// desktop changes its colours. None gives it back the colour of an ordinary text.
void useInk(QWidget& widget, std::optional<Ink> ink);

/// The colour for what stands in an empty field: the palette's own where it can be seen.
[[nodiscard]] QColor placeholderOn(const QPalette& palette);

/// The colour of an outline that is to be seen on the palette's window, and stands back where that can be.
[[nodiscard]] QColor edgeOn(const QPalette& palette);

/// The window's colour of what lies a little lower than the rest.
[[nodiscard]] QColor loweredWindow(const QPalette& palette);

/// Small signs beside texts, drawn in the application's colours at any size.
enum class Mark { Warning, Information };

/// The mark for that ground; in a selected row, for the selection's.
[[nodiscard]] QIcon markIcon(Mark mark, QPalette::ColorRole ground = QPalette::Base);
