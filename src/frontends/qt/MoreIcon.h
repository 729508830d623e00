#pragma once

#include <QIcon>

namespace frontend {

/// Two chevrons that point to what has no room. Drawn when it is shown: Qt's own picture makes every start
/// with a menu bar load the image formats, although most menu bars have room.
[[nodiscard]] QIcon moreIcon();

} // namespace frontend
