#pragma once

#include "app/BRController.h"
#include "platform/appkit/Interface.h"
#include "platform/foundation/Host.h"
#include "platform/posix/Status.h"
#include "review/Plan.h"
#include "review/WorkingCopy.h"

#include <functional>
#include <map>
#include <memory>

namespace review {

/// A copy of the application on a host of its own, whose services are a working copy. Every control and the
/// controller get the state of their originals. Actions change only the copy. Its host is the current one as
/// long as this object lives.
class Rehearsal {
  public:
    /// `original` is the main interface of the current host; alerts and runs are recorded in `*plan`. Fails
    /// when the interface file has changed since it was loaded, for example because a new version of Brindle
    /// was installed.
    [[nodiscard]] static platform::Result<std::unique_ptr<Rehearsal>>
    make(const platform::Interface& original, const std::shared_ptr<WorkingCopy>& copy, Plan* plan);
    ~Rehearsal();
    Rehearsal(const Rehearsal&) = delete;
    Rehearsal& operator=(const Rehearsal&) = delete;

    [[nodiscard]] BRController& controller() const;
    /// The copy of a control of the main interface; null for any other control.
    [[nodiscard]] NSControl* copyOf(const NSControl& original) const;

    /// Performs an action as one event.
    void perform(const std::function<void()>& action);

  private:
    Rehearsal() = default;

    /// Returns false when the two trees differ.
    [[nodiscard]] bool copyStates(const platform::InterfaceNode& from, const platform::InterfaceNode& to);

    std::unique_ptr<platform::Host> host_;
    std::unique_ptr<platform::Interface> interface_;
    std::map<const platform::Element*, platform::Element*> copies_;
};

} // namespace review
