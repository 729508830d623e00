#include "platform/appkit/NSControl.h"

#include "platform/appkit/ActionGate.h"
#include "platform/foundation/Host.h"

void NSControl::setEnabled(bool enabled) {
    enabled_ = enabled;
    didChange();
}

void NSControl::copyState(const Element& from) {
    enabled_ = dynamic_cast<const NSControl&>(from).enabled_;
}

void NSControl::sendAction() {
    if (!action_.perform) {
        return;
    }
    if (platform::Host* host = platform::Host::currentIfAny()) {
        const auto& mayPerform = host->sharedInstance<platform::ActionGate>().mayPerform;
        if (mayPerform && !mayPerform(*this)) {
            return;
        }
    }
    action_.perform(this);
    // The action may have ended the application, and the host with it.
    if (platform::Host* host = platform::Host::currentIfAny()) {
        if (const auto& didPerform = host->sharedInstance<platform::ActionGate>().didPerform) {
            didPerform(*this);
        }
    }
}
