#pragma once

#include "app/BRController.h"
#include "platform/appkit/Interface.h"
#include "platform/foundation/Host.h"
#include "review/Plan.h"
#include "review/WorkingCopy.h"

#include <functional>
#include <map>
#include <memory>

namespace review {

/// The application a second time, on a host of its own whose services are a working copy: every control and
/// the controller in the state that they have now. What is done to it changes nothing but the copy. Its host
/// is the current one for as long as it lives.
class Rehearsal {
  public:
    /// `original` is the main interface of the current host; alerts and runs are noted in `*plan`.
    Rehearsal(const platform::Interface& original, const std::shared_ptr<WorkingCopy>& copy, Plan* plan);
    ~Rehearsal();
    Rehearsal(const Rehearsal&) = delete;
    Rehearsal& operator=(const Rehearsal&) = delete;

    [[nodiscard]] BRController& controller() const;
    /// The copy of a control; null when it is none of the main interface's.
    [[nodiscard]] NSControl* copyOf(const NSControl& original) const;
    [[nodiscard]] NSControl* findWiredTo(const std::string& operation) const;

    /// Runs an action as one event.
    void perform(const std::function<void()>& action);

  private:
    void copyStates(const platform::InterfaceNode& from, const platform::InterfaceNode& to);

    std::unique_ptr<platform::Host> host_;
    std::unique_ptr<platform::Interface> interface_;
    std::map<const platform::Element*, platform::Element*> copies_;
};

} // namespace review
