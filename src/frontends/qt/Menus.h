#pragma once

#include "frontends/qt/Binding.h"
#include "platform/appkit/Interface.h"

#include <QMainWindow>

namespace frontend {

class WindowActions;

/// Fills the window's menu bar with the menus of `menuBar`. `menuBar` and `actions` must outlive the window.
void fillMenuBar(QMainWindow& window, const platform::InterfaceNode& menuBar, WindowActions& actions,
                 RefreshQueue& queue);

/// Ends the editing of the focused field. For actions that do not take the focus from it.
void endEditingOfFocusedField();

/// Adds a menu before the last one, which is the help menu.
void insertBeforeHelp(QMenuBar& bar, QMenu& menu);

} // namespace frontend
