#include "platform/security/HelperAuthority.h"

#include "platform/appkit/Presenter.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSLog.h"

namespace platform {

void HelperAuthority::settle() {
    if (Status status = helper_.settle(); !status.isOk()) {
        Host::current().presenter().beep();
        NSLog("%@", status.text());
    }
}

void HelperAuthority::takeBack() {
    helper_.end(); // this undoes what was not settled
}

void HelperAuthority::endAction() {
    settle();
    helper_.endAction();
}

} // namespace platform
