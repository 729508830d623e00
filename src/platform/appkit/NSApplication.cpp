#include "platform/appkit/NSApplication.h"

#include "platform/appkit/NSWindow.h"
#include "platform/appkit/Presenter.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSLog.h"

#include <exception>
#include <utility>

NSApplication& NSApp() {
    return platform::Host::current().sharedInstance<NSApplication>();
}

void NSApplication::finishLaunching() {
    if (std::exchange(launched_, true) || delegate_ == nullptr) {
        return;
    }
    delegate_->applicationDidFinishLaunching();
}

void NSApplication::terminate() {
    if (std::exchange(terminated_, true)) {
        return;
    }
    if (delegate_ != nullptr) {
        delegate_->applicationWillTerminate();
    }
    // A sheet that is still open was not confirmed, so its end is not reported.
    sheet_ = nullptr;
    sheetDidEnd_ = nullptr;
    while (!windowsOnScreen_->empty()) {
        windowsOnScreen_->back()->orderOut();
    }
    platform::Host::current().presenter().applicationDidTerminate();
}

void NSApplication::mainWindowDidClose() {
    if (delegate_ != nullptr && delegate_->applicationShouldTerminateAfterLastWindowClosed()) {
        terminate();
    }
}

void NSApplication::beginSheet(NSWindow* sheet, NSWindow*, SheetDidEnd didEnd) {
    if (sheet_ != nullptr || sheet == nullptr) {
        return;
    }
    sheet_ = sheet;
    sheetDidEnd_ = std::move(didEnd);
    sheet->makeKeyAndOrderFront();
}

void NSApplication::endSheet(NSWindow* sheet, int returnCode) {
    if (sheet == nullptr || sheet != sheet_) {
        return;
    }
    sheet_ = nullptr;
    if (const SheetDidEnd didEnd = std::exchange(sheetDidEnd_, nullptr)) {
        didEnd(sheet, returnCode);
    }
}

void NSApplication::cancelSheet(NSWindow* sheet) {
    if (sheet == nullptr || sheet != sheet_) {
        return;
    }
    sheet_ = nullptr;
    sheetDidEnd_ = nullptr;
    sheet->orderOut();
}

void NSApplication::forget(const NSWindow* window) {
    if (mainWindow_ == window) {
        mainWindow_ = nullptr;
    }
    if (sheet_ == window) {
        sheet_ = nullptr;
        sheetDidEnd_ = nullptr;
    }
}

void NSApplication::dispatch(const std::function<void()>& event) {
    ++dispatches_;
    try {
        event();
    } catch (const std::exception& error) {
        NSLog("The action was given up: %@", error.what());
    } catch (...) {
        NSLog("The action was given up: it failed without saying why.");
    }
    if (--dispatches_ == 0) {
        platform::Host::current().endAction();
    } else {
        platform::Host::settlePendingWrites();
    }
}
