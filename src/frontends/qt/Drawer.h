#pragma once

#include "frontends/qt/Binding.h"
#include "platform/appkit/NSWindow.h"

#include <QScrollArea>
#include <QVariantAnimation>

/// The widget of a drawer: slides out of the right edge of the window that it stands in. Where the screen has
/// room the window grows by the drawer's width, so that the rest keeps its own; when the drawer closes the
/// window gets it back.
class Drawer : public QScrollArea {
    Q_OBJECT

  public:
    /// Shows `contents`, `width` points wide. `animated` false: it is open or closed at once.
    Drawer(NSDrawer& drawer, QWidget* contents, int width, bool animated, RefreshQueue& queue);

  private:
    void load();
    void slideTo(int width);
    void setShownWidth(int width);

    NSDrawer& drawer_;
    int width_;
    bool animated_;
    bool opened_ = false; ///< as it is shown, or being slid to
    int grown_ = 0;       ///< what the window has grown for the drawer
    QVariantAnimation slide_;
};
