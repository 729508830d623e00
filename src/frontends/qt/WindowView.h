#pragma once

#include "frontends/qt/Binding.h"
#include "frontends/qt/WidgetBuilder.h"
#include "platform/appkit/Interface.h"
#include "platform/appkit/NSWindow.h"

#include <QPointer>
#include <QWidget>

namespace frontend {

/// One window, sheet or panel of an interface file on the screen: its widget, which is kept in step with the
/// NSWindow. Owned by the presenter.
class WindowView : public QObject {
  public:
    /// Builds the window for `node` without showing it. `menuBar` may be null; for sheets and panels,
    /// `parent` is the main window's widget.
    WindowView(const platform::InterfaceNode& node, const platform::InterfaceNode* menuBar, QWidget* parent,
               bool animated, WindowActions& actions, RefreshQueue& queue);
    ~WindowView() override;

    [[nodiscard]] NSWindow& window() const { return window_; }

    [[nodiscard]] QWidget& widget() const { return *widget_; }

    /// Shows or hides the widget as the model says.
    void followVisibility();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void buildMain(const platform::InterfaceNode& node, const platform::InterfaceNode* menuBar);
    void buildDialog(const platform::InterfaceNode& node, QWidget* parent);
    void place();
    void raise();
    [[nodiscard]] bool keyPressed(int key);

    NSWindow& window_;
    WindowActions& actions_;
    RefreshQueue& queue_;
    WidgetBuilder builder_;
    QPointer<QWidget> widget_; ///< null after the main window, its parent, was destroyed
    platform::Connection orderedFront_;
};

} // namespace frontend
