#include "frontends/Application.h"

#include "app/BRController.h"
#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSWindow.h"

#include <stdexcept>
#include <utility>

namespace frontend {

Application::Application(platform::Services services) : history_(services), host_(std::move(services)) {}

void Application::setPresenter(std::shared_ptr<platform::Presenter> presenter) {
    host_.setPresenter(std::move(presenter));
}

platform::Status Application::load() {
    auto loaded = BRController::loadInterface();
    if (!loaded.isOk()) {
        return loaded.status();
    }
    interface_ = std::move(*loaded);
    reviewer_ = std::make_unique<review::Reviewer>(*interface_);
    return {};
}

void Application::launch() {
    NSApp().dispatch([] {
        if (NSWindow* window = NSApp().mainWindow()) {
            window->makeKeyAndOrderFront();
        }
        NSApp().finishLaunching();
    });
}

void Application::end() {
    if (interface_) {
        NSApp().dispatch([] { NSApp().terminate(); });
    }
}

NSTableView& Application::table(const std::string& name) const {
    auto* table = dynamic_cast<NSTableView*>(interface_ ? interface_->find(name) : nullptr);
    if (table == nullptr) {
        throw std::logic_error("the interface has no table " + name);
    }
    return *table;
}

} // namespace frontend
