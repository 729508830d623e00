#pragma once

#include <QIcon>
#include <QPalette>

namespace frontend {

// Small signs that are drawn when they are shown, in the application's colours and at any size.

/// A sign beside a text.
enum class Mark { Warning, Information };

/// Returns the mark as an icon for that ground. In a selected row it uses the selection's colours.
[[nodiscard]] QIcon markIcon(Mark mark, QPalette::ColorRole ground = QPalette::Base);

/// Returns two chevrons that point to what has no room in a menu bar. Qt's own picture makes every start with
/// a menu bar load the image formats, although most menu bars have room.
[[nodiscard]] QIcon moreIcon();

} // namespace frontend
