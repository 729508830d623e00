#pragma once

#include <functional>
#include <memory>
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

/// The application of the current host: its delegate, its main window, its sheet and its termination.
class NSApplication {
  public:
    using SheetDidEnd = std::function<void(NSWindow* sheet, int returnCode)>;

    /// Not owned; may be null.
    void setDelegate(NSApplicationDelegate* delegate) { delegate_ = delegate; }

    [[nodiscard]] NSApplicationDelegate* delegate() const { return delegate_; }

    /// Tells the delegate that launching has finished. Later calls do nothing.
    void finishLaunching();

    /// Ends the application: tells the delegate, takes the windows off the screen, then tells the presenter.
    /// Later calls do nothing. The caller must return to the event loop, which ends.
    void terminate();

    [[nodiscard]] bool isTerminated() const { return terminated_; }

    [[nodiscard]] NSWindow* mainWindow() const { return mainWindow_; }

    void setMainWindow(NSWindow* window) { mainWindow_ = window; }

    /// The main window was closed: terminates if the delegate says so.
    void mainWindowDidClose();

    /// Shows `sheet` and returns at once; endSheet calls `didEnd`. Does nothing when a sheet is already open.
    /// Front-ends attach a sheet to the active window, which is `window` wherever there is a sheet.
    void beginSheet(NSWindow* sheet, NSWindow* window, SheetDidEnd didEnd);
    /// Ends the sheet's session by calling its `didEnd`, which takes it off the screen. Does nothing when it
    /// is not open.
    void endSheet(NSWindow* sheet, int returnCode);

    /// Takes the sheet off the screen without a result, as when the application ends while it is open: its
    /// `didEnd` is not called. Does nothing when it is not open.
    void cancelSheet(NSWindow* sheet);

    /// The open sheet, or null.
    [[nodiscard]] NSWindow* attachedSheet() const { return sheet_; }

    /// The windows on screen, in the order in which they appeared; maintained by NSWindow.
    [[nodiscard]] const std::shared_ptr<std::vector<NSWindow*>>& windowsOnScreen() const {
        return windowsOnScreen_;
    }

    /// `window` is about to be destroyed: it is no longer the main window or the sheet.
    void forget(const NSWindow* window);

    /// Runs one user event, which is one action of the host. An event inside another, as while an alert is
    /// open, is part of the outer one. An exception that escapes from an action is logged and ends the event.
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
