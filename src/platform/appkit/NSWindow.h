#pragma once

#include "platform/appkit/Element.h"

#include <memory>
#include <string>
#include <vector>

class NSWindow;

class NSWindowDelegate {
  public:
    virtual ~NSWindowDelegate() = default;
    virtual void windowDidBecomeKey(NSWindow* window) = 0;
    virtual void windowDidResignKey(NSWindow* window) = 0;
};

enum class NSWindowKind {
    Main,  ///< the main window: closing it may end the application
    Sheet, ///< shown by NSApplication::beginSheet only
    Panel
};

/// A window, sheet or panel as a model: whether it is on screen, and whether it receives the keys.
class NSWindow : public platform::Element {
  public:
    explicit NSWindow(NSWindowKind kind = NSWindowKind::Main) : kind_(kind) {}

    /// Leaves the screen without notifying anybody.
    ~NSWindow() override;

    [[nodiscard]] NSWindowKind kind() const { return kind_; }

    [[nodiscard]] const std::string& title() const { return title_; }

    void setTitle(std::string title);

    /// Not owned; may be null.
    void setDelegate(NSWindowDelegate* delegate) { delegate_ = delegate; }

    [[nodiscard]] bool isVisible() const { return visible_; }

    /// The front-end centres it on the screen when it next shows it.
    void center();

    [[nodiscard]] bool isCentered() const { return centered_; }

    /// Brings the window on screen (telling the presenter if it was not), to the front, and makes it key; the
    /// previous key window is no longer key.
    void makeKeyAndOrderFront();
    /// Takes the window off the screen; it is no longer key.
    void orderOut();
    /// Closes the window, as the user or a script's `quit` does: takes it off the screen; closing the main
    /// window may end the application. Does nothing for a sheet, which only NSApplication::endSheet ends.
    void close();
    /// The front-end calls these when the window starts or stops receiving keys. They tell the delegate if
    /// that is a change. A window that is not on screen does not become key.
    void becomeKey();
    void resignKey();

    void copyState(const Element& from) override;

    /// Emitted by makeKeyAndOrderFront: the front-end raises the window.
    platform::Signal<> orderedFront;

  private:
    NSWindowKind kind_;
    std::string title_;
    NSWindowDelegate* delegate_ = nullptr;
    bool visible_ = false;
    bool key_ = false;
    bool centered_ = false;
    std::shared_ptr<std::vector<NSWindow*>> onScreen_; ///< the application's list while this window is on it
};

/// A drawer that slides out of its window's edge. Initially closed.
class NSDrawer : public platform::Element {
  public:
    [[nodiscard]] bool isOpen() const { return open_; }

    void open();
    void close();
    void toggle();

    void copyState(const Element& from) override;

  private:
    bool open_ = false;
};
