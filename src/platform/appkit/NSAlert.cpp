#include "platform/appkit/NSAlert.h"

#include "platform/foundation/Host.h"

#include <utility>

int platform::runAlert(const std::string& title, const std::string& message, const std::string& defaultButton,
                       const std::optional<std::string>& alternateButton,
                       const std::optional<std::string>& otherButton) {
    Host::settlePendingWrites();
    const Alert alert{title, message, defaultButton, alternateButton, otherButton};
    return static_cast<int>(Host::current().presenter().runAlert(alert));
}

void NSBeep() {
    platform::Host::current().presenter().beep();
}

std::optional<std::string> NSOpenPanel::runModal() {
    return runModalForDirectory("", "");
}

std::optional<std::string> NSOpenPanel::runModalForDirectory(const std::string& directory,
                                                             const std::string& file) {
    request_.directory = directory;
    request_.file = file;
    platform::Host::settlePendingWrites();
    return platform::Host::current().presenter().runOpenPanel(request_);
}

void NSWorkspace::openURL(const std::string& address) {
    platform::Host::current().presenter().openAddress(address);
}

NSTimer::NSTimer(double interval, std::function<void()> fire) {
    // Held weakly: a host that is being destroyed has already stopped its timers.
    presenter_ = platform::Host::current().services().presenter;
    id_ = platform::Host::current().presenter().startTimer(interval, std::move(fire));
}

NSTimer::~NSTimer() {
    if (const auto presenter = presenter_.lock()) {
        presenter->stopTimer(id_);
    }
}
