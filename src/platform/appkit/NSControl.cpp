#include "platform/appkit/NSControl.h"

void NSControl::setEnabled(bool enabled) {
    enabled_ = enabled;
    didChange();
}

void NSControl::sendAction() {
    if (action_.perform) {
        action_.perform(this);
    }
}
