#include "platform/foundation/NSNotificationCenter.h"

#include "platform/foundation/Host.h"

#include <utility>

NSNotificationCenter& NSNotificationCenter::defaultCenter() {
    return platform::Host::current().notificationCenter();
}

void NSNotificationCenter::addObserver(const void* observer, Handler handler, std::string name,
                                       const void* object) {
    observations_.push_back(
        std::make_shared<Observation>(Observation{observer, std::move(handler), std::move(name), object}));
}

void NSNotificationCenter::removeObserver(const void* observer) {
    std::erase_if(observations_, [observer](const std::shared_ptr<Observation>& observation) {
        if (observation->observer != observer) {
            return false;
        }
        observation->isRemoved = true;
        return true;
    });
}

void NSNotificationCenter::postNotificationName(const std::string& name, const void* object) {
    const NSNotification notification{name, object};
    // A copy, because a handler may add and remove observers. Observers that have been removed are skipped.
    const auto observations = observations_;
    for (const auto& observation : observations) {
        const bool matches =
            observation->name == name && (observation->object == nullptr || observation->object == object);
        if (matches && !observation->isRemoved) {
            observation->handler(notification);
        }
    }
}
