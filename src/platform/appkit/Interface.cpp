#include "platform/appkit/Interface.h"

namespace platform {

namespace {

const std::string& valueIn(const std::map<std::string, std::string, std::less<>>& values,
                           std::string_view name) {
    static const std::string none;
    const auto found = values.find(name);
    return found == values.end() ? none : found->second;
}

} // namespace

const std::string& InterfaceNode::attribute(std::string_view name) const {
    return valueIn(attributes, name);
}

const std::string& InterfaceNode::key(std::string_view name) const {
    return valueIn(keys, name);
}

Interface::~Interface() {
    if (application_ != nullptr) {
        if (delegate_ != nullptr && application_->delegate() == delegate_) {
            application_->setDelegate(nullptr);
        }
        visitNodes(*root_, [this](const InterfaceNode& node) {
            if (const auto* window = dynamic_cast<const NSWindow*>(node.element.get())) {
                application_->forget(window);
            }
        });
    }
    ownedOwner_.reset();
}

Element* Interface::find(const std::string& name) const {
    const InterfaceNode* node = findNode(name);
    return node == nullptr ? nullptr : node->element.get();
}

const InterfaceNode* Interface::findNode(const std::string& name) const {
    const auto found = byName_.find(name);
    return found == byName_.end() ? nullptr : found->second;
}

NSControl* Interface::findWiredTo(const std::string& operation) const {
    const auto found = byOperation_.find(operation);
    return found == byOperation_.end() ? nullptr : found->second;
}

} // namespace platform
