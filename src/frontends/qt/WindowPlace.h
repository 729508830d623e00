#pragma once

#include "platform/appkit/NSTabView.h"
#include "platform/appkit/NSWindow.h"
#include "platform/foundation/Signal.h"

#include <QMainWindow>
#include <QObject>
#include <QTimer>

#include <string>

namespace frontend {

class Drawer;

/// Remembers the main window's position and size and whether its drawer is open, and restores them at the
/// next start. The application closes the drawer on every page that it does not belong to; this opens it
/// again when the user returns to its page. A child of the window's widget.
class WindowPlace : public QObject {
  public:
    /// Restores the position of `window` before it is shown, and becomes its child. The other arguments must
    /// outlive this object; `tabs` may be null.
    WindowPlace(const NSWindow& model, NSTabView* tabs, QMainWindow& window);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void restore();
    void remember();
    void drawerChanged();
    void pageChanged();

    std::string key_;
    NSTabView* tabs_;
    QMainWindow& window_;
    Drawer* drawer_; ///< null when the window has none
    QRect place_;    ///< the window's place when it is neither maximised nor widened for the drawer
    QTimer settled_; ///< delays saving: a place changes with every step of the mouse
    int page_ = 0;
    bool isOpen_ = false;    ///< whether the drawer was open after its last change
    bool isLeft_ = false;    ///< a page is being left with its drawer open, which the application now closes
    bool comesBack_ = false; ///< the application closed the drawer, so reopen it on its page
    platform::Connection drawerChanged_;
    platform::Connection pageChanged_;
};

} // namespace frontend
