#pragma once

#include "platform/appkit/Element.h"

#include <functional>
#include <optional>
#include <string>

class NSControl;

/// What a control sends when it is used: one operation of the object that the interface file wires it to.
struct NSAction {
    std::string
        operation; ///< the full keyword-style name ("createShare:"), empty when the control sends nothing
    std::function<void(NSControl* sender)> perform;
};

/// A control that can be enabled and sends an action.
class NSControl : public platform::Element {
  public:
    [[nodiscard]] bool isEnabled() const { return enabled_; }

    void setEnabled(bool enabled);

    [[nodiscard]] const NSAction& action() const { return action_; }

    void setAction(NSAction action) { action_ = std::move(action); }

    /// The control's value as a string, if it is still the one that the user last typed, chose or clicked;
    /// otherwise none. Setting a value from the program is not an edit. Setting a different one only suspends
    /// the user's edit, which then counts again with its own value, so that controls can be filled again
    /// below it; forgetEdit ends it.
    [[nodiscard]] virtual std::optional<std::string> edit() const { return std::nullopt; }

    [[nodiscard]] bool isEdited() const { return edit().has_value(); }

    /// Takes what is shown for the program's own from now on.
    virtual void forgetEdit() {}

    void copyState(const Element& from) override;

    /// Sends the action with this control as the sender; does nothing when no action is set or the host's
    /// ActionGate refuses it. Exceptions from the action reach the front-end's event dispatch
    /// (NSApplication::dispatch).
    void sendAction();

  private:
    bool enabled_ = true;
    NSAction action_;
};
