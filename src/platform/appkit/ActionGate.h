#pragma once

#include <functional>

class NSControl;

namespace platform {

/// What stands between every control and the operation that it sends, whatever front-end the user has. A host
/// has one; open at first.
struct ActionGate {
    /// Asked before a control's action is sent, with the control as a user has left it; false: nothing is
    /// sent.
    std::function<bool(NSControl& sender)> mayPerform;
    /// Told after a control's action was performed.
    std::function<void(const NSControl& sender)> didPerform;
};

} // namespace platform
