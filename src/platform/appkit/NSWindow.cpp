#include "platform/appkit/NSWindow.h"

#include "platform/appkit/NSApplication.h"
#include "platform/appkit/Presenter.h"
#include "platform/foundation/Host.h"

#include <algorithm>
#include <utility>

NSWindow::~NSWindow() {
    if (onScreen_) {
        std::erase(*onScreen_, this);
    }
}

void NSWindow::setTitle(std::string title) {
    title_ = std::move(title);
    didChange();
}

void NSWindow::center() {
    centered_ = true;
    didChange();
}

void NSWindow::makeKeyAndOrderFront() {
    const auto windows = NSApp().windowsOnScreen();
    if (!visible_) {
        visible_ = true;
        onScreen_ = windows;
        windows->push_back(this);
        platform::Host::current().presenter().windowVisibilityDidChange(*this);
        didChange();
    }
    for (NSWindow* other : std::vector<NSWindow*>(*windows)) {
        if (other != this) {
            other->resignKey();
        }
    }
    becomeKey();
    orderedFront.emit();
}

void NSWindow::orderOut() {
    if (!visible_) {
        return;
    }
    resignKey();
    visible_ = false;
    std::erase(*onScreen_, this);
    onScreen_ = nullptr;
    platform::Host::current().presenter().windowVisibilityDidChange(*this);
    didChange();
}

void NSWindow::close() {
    if (kind_ == NSWindowKind::Sheet) {
        return; // only endSheet ends a sheet, so that its session always gets a result
    }
    orderOut();
    if (kind_ == NSWindowKind::Main) {
        NSApp().mainWindowDidClose();
    }
}

void NSWindow::becomeKey() {
    if (key_ || !visible_) {
        return;
    }
    key_ = true;
    if (delegate_ != nullptr) {
        delegate_->windowDidBecomeKey(this);
    }
}

void NSWindow::resignKey() {
    if (!key_) {
        return;
    }
    key_ = false;
    if (delegate_ != nullptr) {
        delegate_->windowDidResignKey(this);
    }
}

void NSWindow::copyState(const Element& from) {
    const auto& other = dynamic_cast<const NSWindow&>(from);
    title_ = other.title_;
    key_ = other.key_;
    if (other.visible_ && !visible_) {
        visible_ = true;
        onScreen_ = NSApp().windowsOnScreen();
        onScreen_->push_back(this);
    }
}

void NSDrawer::copyState(const Element& from) {
    open_ = dynamic_cast<const NSDrawer&>(from).open_;
}

void NSDrawer::open() {
    open_ = true;
    didChange();
}

void NSDrawer::close() {
    open_ = false;
    didChange();
}

void NSDrawer::toggle() {
    open_ = !open_;
    didChange();
}
