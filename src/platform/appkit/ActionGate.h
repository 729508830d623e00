#pragma once

#include <functional>

class NSControl;

namespace platform {

/// Decides whether a control may send its action, whichever front-end the user has. A host has one; initially
/// it lets every action through.
struct ActionGate {
    /// Called before a control's action is sent, with the control in the state that the user left it in. When
    /// it returns false, the action is not sent.
    std::function<bool(NSControl& sender)> mayPerform;
    /// Called after a control's action has been performed.
    std::function<void(const NSControl& sender)> didPerform;
};

} // namespace platform
