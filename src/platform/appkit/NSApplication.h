#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

class NSWindow;

/// What the application reports to its delegate.
class NSApplicationDelegate {
  public:
    virtual ~NSApplicationDelegate() = default;
    virtual void applicationDidFinishLaunching() = 0;
    [[nodiscard]] virtual bool applicationShouldTerminateAfterLastWindowClosed() = 0;
    virtual void applicationWillTerminate() = 0;
};

/// The application of the current host: its delegate, its sheet and its end.
class NSApplication {
  public:
    using SheetDidEnd = std::function<void(NSWindow* sheet, int returnCode)>;

    /// Not owned; may be null.
    void setDelegate(NSApplicationDelegate* delegate) { delegate_ = delegate; }

    [[nodiscard]] NSApplicationDelegate* delegate() const { return delegate_; }

    /// Tells the delegate that launching has finished. Once.
    void finishLaunching();

    /// Ends the application: the delegate is told, windows go off screen, then the presenter is told. The
    /// second call does nothing. The caller must return to the event loop, which ends.
    void terminate();

    [[nodiscard]] bool isTerminated() const { return terminated_; }

    [[nodiscard]] NSWindow* mainWindow() const { return mainWindow_; }

    void setMainWindow(NSWindow* window) { mainWindow_ = window; }

    /// The main window was closed: terminates if the delegate says so.
    void mainWindowDidClose();

    /// Shows `sheet` as a sheet of `window` (null: it stands alone) and returns at once; `didEnd` is called
    /// by endSheet. Does nothing when a sheet is up already.
    void beginSheet(NSWindow* sheet, NSWindow* window, SheetDidEnd didEnd);
    /// Ends the sheet's session: calls its `didEnd`, which takes it off the screen. Does nothing when it is
    /// not up.
    void endSheet(NSWindow* sheet, int returnCode);

    /// Takes the sheet off the screen without an answer, as when the application ends while it is up: its
    /// `didEnd` is not called. Does nothing when it is not up.
    void cancelSheet(NSWindow* sheet);

    /// The sheet that is up, or null.
    [[nodiscard]] NSWindow* attachedSheet() const { return sheet_; }

    /// The windows on screen in the order in which they came there; kept by NSWindow.
    [[nodiscard]] const std::shared_ptr<std::vector<NSWindow*>>& windowsOnScreen() const {
        return windowsOnScreen_;
    }

    /// `window` is about to be destroyed: it is no longer the main window or the sheet.
    void forget(const NSWindow* window);

    /// Runs one user event, which is one action of the host. An event inside another, as while an alert is
    /// up, is part of the outer one. An exception that escapes an action is logged and ends the event.
    void dispatch(const std::function<void()>& event);

  private:
    NSApplicationDelegate* delegate_ = nullptr;
    NSWindow* mainWindow_ = nullptr;
    NSWindow* sheet_ = nullptr;
    SheetDidEnd sheetDidEnd_;
    std::shared_ptr<std::vector<NSWindow*>> windowsOnScreen_ = std::make_shared<std::vector<NSWindow*>>();
    int dispatches_ = 0; ///< events in progress
    bool launched_ = false;
    bool terminated_ = false;
};

/// The current host's application.
[[nodiscard]] NSApplication& NSApp();
