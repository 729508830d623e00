#include "platform/foundation/Host.h"

#include "platform/foundation/Gestalt.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSUserDefaults.h"

namespace platform {

namespace {

Host*& currentHost() {
    static Host* current = nullptr;
    return current;
}

} // namespace

Host::Host(Services services)
    : services_(std::move(services)), previous_(currentHost()),
      notificationCenter_(std::make_unique<NSNotificationCenter>()) {
    currentHost() = this;
}

Host::~Host() {
    // A shared instance that is being destroyed may still log, post, stop observing and use older instances.
    while (!shared_.empty()) {
        const std::shared_ptr<void> youngest = std::move(shared_.back().second);
        shared_.pop_back();
    }
    currentHost() = previous_;
}

Host& Host::current() {
    if (currentHost() == nullptr) {
        throw std::logic_error("a platform service was called outside a host");
    }
    return *currentHost();
}

Host* Host::currentIfAny() {
    return currentHost();
}

void Host::settlePendingWrites() {
    if (const Host* host = currentHost(); host != nullptr && host->services_.pendingWrites) {
        host->services_.pendingWrites->settle();
    }
}

void Host::endAction() {
    ++endedActions_;
    if (services_.pendingWrites) {
        services_.pendingWrites->endAction();
    }
}

NSNotificationCenter& Host::notificationCenter() {
    return *notificationCenter_;
}

NSUserDefaults& Host::userDefaults() {
    if (!userDefaults_) {
        userDefaults_ = std::make_unique<NSUserDefaults>(paths().defaultsFile());
    }
    return *userDefaults_;
}

NSBundle& Host::mainBundle() {
    if (!mainBundle_) {
        mainBundle_ = std::make_unique<NSBundle>(paths().resources(), services_.languages);
    }
    return *mainBundle_;
}

} // namespace platform

std::int32_t Gestalt(std::uint32_t selector, std::int32_t* response) {
    constexpr std::int32_t unknownSelector = -5550;
    const auto& version = platform::Host::current().services().systemVersion;
    if (selector != gestaltSystemVersion || !version) {
        return unknownSelector;
    }
    *response = *version;
    return 0;
}
