#pragma once

#include "platform/appkit/NSWindow.h"
#include "platform/foundation/Signal.h"

#include <QMainWindow>
#include <QObject>
#include <QTimer>

#include <string>

class Drawer;

/// Remembers the main window's position and size and whether its drawer is open, and restores them at the
/// next start. A child of the window's widget.
class WindowPlace : public QObject {
  public:
    /// Restores the position of `window`, the widget of `model`, before it is shown, and becomes its child.
    WindowPlace(const NSWindow& model, QMainWindow& window);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void restore();
    void remember();
    void drawerChanged();

    std::string key_;
    QMainWindow& window_;
    Drawer* drawer_;      ///< null when the window has none
    QRect place_;         ///< the window's place when it is neither maximised nor widened for the drawer
    QTimer settled_;      ///< delays saving: a place changes with every step of the mouse
    bool isOpen_ = false; ///< whether the drawer was open after its last change
    platform::Connection drawerChanged_;
};
