#include "review/Rehearsal.h"

#include "platform/appkit/NSApplication.h"
#include "review/PlanHost.h"

#include <utility>

namespace review {

namespace {

platform::Services planServices(const std::shared_ptr<WorkingCopy>& copy, Plan* plan) {
    platform::Services services = copy->services();
    services.log = std::make_shared<SilentLog>();
    services.authority = std::make_shared<PlanAuthority>(copy);
    services.presenter = std::make_shared<PlanPresenter>(plan);
    return services;
}

} // namespace

platform::Result<std::unique_ptr<Rehearsal>>
Rehearsal::make(const platform::Interface& original, const std::shared_ptr<WorkingCopy>& copy, Plan* plan) {
    const auto& controllerNow = *static_cast<const BRController*>(original.owner());
    const bool sheetIsUp = NSApp().attachedSheet() != nullptr;
    std::unique_ptr<Rehearsal> made(new Rehearsal());
    made->host_ = std::make_unique<platform::Host>(planServices(copy, plan));
    auto loaded = BRController::loadInterface();
    if (!loaded.isOk()) {
        return loaded.status(); // only if the file has changed since it was first loaded
    }
    made->interface_ = std::move(*loaded);
    made->controller().copyState(controllerNow, sheetIsUp);
    if (!made->copyStates(original.root(), made->interface_->root())) {
        return platform::Status::failure("cannot make a plan", "",
                                         "the interface file has changed since it was loaded");
    }
    return made;
}

Rehearsal::~Rehearsal() {
    interface_ = nullptr; // destroyed first, because its controls need the host
}

BRController& Rehearsal::controller() const {
    return *static_cast<BRController*>(interface_->owner());
}

NSControl* Rehearsal::copyOf(const NSControl& original) const {
    const auto found = copies_.find(&original);
    return found == copies_.end() ? nullptr : dynamic_cast<NSControl*>(found->second);
}

void Rehearsal::perform(const std::function<void()>& action) {
    NSApp().dispatch(action);
}

bool Rehearsal::copyStates(const platform::InterfaceNode& from, const platform::InterfaceNode& to) {
    if (from.kind != to.kind || from.children.size() != to.children.size() ||
        (from.element == nullptr) != (to.element == nullptr)) {
        return false;
    }
    if (from.element) {
        to.element->copyState(*from.element);
        copies_.emplace(from.element.get(), to.element.get());
    }
    for (std::size_t index = 0; index < from.children.size(); ++index) {
        if (!copyStates(*from.children[index], *to.children[index])) {
            return false;
        }
    }
    return true;
}

} // namespace review
