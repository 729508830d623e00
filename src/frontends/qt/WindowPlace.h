#pragma once

#include "platform/appkit/NSTabView.h"
#include "platform/appkit/NSWindow.h"
#include "platform/foundation/Signal.h"

#include <QMainWindow>
#include <QObject>
#include <QTimer>

#include <string>

class Drawer;

/// Where the main window stands, how large it is and whether its drawer is open: comes back at the next start
/// as the user left it. And the drawer, which the application closes on any page but the one that it belongs
/// to, is open again when the user comes back to that. A child of the window's widget.
class WindowPlace : public QObject {
  public:
    /// Puts `window` where it was left, before it is shown. All but `window`, whose child it becomes, are
    /// kept; `tabs` may be null.
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
    Drawer* drawer_; ///< null where the window has none
    QRect place_;    ///< of the window while it is neither maximised nor widened for the drawer
    QTimer settled_; ///< a place changes with every step of the mouse
    int page_ = 0;
    bool isOpen_ = false;    ///< the drawer, as of its last change
    bool isLeft_ = false;    ///< a page is being left with the drawer open: the application closes it now
    bool comesBack_ = false; ///< and has done so
    platform::Connection drawerChanged_;
    platform::Connection pageChanged_;
};
