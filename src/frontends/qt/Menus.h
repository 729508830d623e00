#pragma once

#include "frontends/qt/Binding.h"
#include "platform/appkit/Interface.h"

#include <QMainWindow>

class WindowActions;

/// Fills the window's menu bar with the menus of `menuBar`, which outlive it, like `actions`.
void fillMenuBar(QMainWindow& window, const platform::InterfaceNode& menuBar, WindowActions& actions,
                 RefreshQueue& queue);

/// What the Quit item does: the main window is closed, and the application decides what follows.
void closeMainWindow(RefreshQueue& queue);

/// Lets a field that is being edited finish, where something is about to happen that does not take the focus
/// from it.
void endEditingOfFocusedField();

/// Adds a menu before the last one, which is the help's, as everywhere.
void insertBeforeHelp(QMenuBar& bar, QMenu& menu);
