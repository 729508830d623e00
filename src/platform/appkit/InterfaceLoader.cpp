#include "platform/appkit/InterfaceLoader.h"

#include "platform/appkit/Presenter.h"
#include "platform/appkit/ShownWhen.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSString.h"

#include <algorithm>

#include <pugixml.hpp>

namespace platform {

Result<std::unique_ptr<Interface>> Interface::load(const std::string& path, const std::string& ownerClass,
                                                   void* owner) {
    return InterfaceLoader(path).load(ownerClass, owner);
}

Result<std::unique_ptr<Interface>> InterfaceLoader::load(const std::string& ownerClass, void* owner) {
    const auto file = contentsOfFile(path_);
    if (!file.isOk()) {
        refuse(1, stringWithFormat("the interface file cannot be read: %@", file.status().why()));
        return status_;
    }
    text_ = *file;
    lineStarts_ = {0};
    for (std::size_t at = file->find('\n'); at != std::string::npos; at = file->find('\n', at + 1)) {
        lineStarts_.push_back(at + 1);
    }
    pugi::xml_document document;
    const pugi::xml_parse_result parsed =
        document.load_buffer(file->data(), file->size(), pugi::parse_default, pugi::encoding_utf8);
    if (!parsed) {
        refuse(lineAt(parsed.offset),
               stringWithFormat("the XML is not well formed: %@", parsed.description()));
        return status_;
    }
    const pugi::xml_node root = document.document_element();
    const int rootLine = lineAt(root.offset_debug());
    if (std::string_view(root.name()) != elementName(InterfaceKind::Interface)) {
        refuse(rootLine, stringWithFormat("an interface file begins with <%@>, not with <%@>",
                                          elementName(InterfaceKind::Interface), root.name()));
    }
    interface_ = std::unique_ptr<Interface>(new Interface());
    chooseClass(root.attribute("class").value(), ownerClass, rootLine);
    if (status_.isOk()) {
        chooseOwner(owner, rootLine);
    }
    if (!status_.isOk()) {
        return status_;
    }
    interface_->root_ = build(root, ruleOf(InterfaceKind::Interface));
    checkReferences();
    checkOutlets(rootLine);
    if (!status_.isOk()) {
        resetOutlets();
        return status_;
    }
    tellApplication();
    Host::current().presenter().interfaceDidLoad(*interface_);
    return std::move(interface_);
}

void InterfaceLoader::refuse(int line, const std::string& fault) {
    if (status_.isOk()) {
        status_ = Status::failure(stringWithFormat("%@:%d", path_, line), "", fault);
    }
}

int InterfaceLoader::lineAt(std::ptrdiff_t offset) const {
    const auto after = std::upper_bound(lineStarts_.begin(), lineStarts_.end(),
                                        static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, offset)));
    return static_cast<int>(after - lineStarts_.begin());
}

void InterfaceLoader::chooseClass(const std::string& named, const std::string& expected, int line) {
    const ObjectClass* known = findClass(named);
    if (known == nullptr) {
        refuse(line, stringWithFormat("there is no class \"%@\"", named));
    }
    if (named != expected) {
        refuse(line, stringWithFormat("the file is for the class \"%@\", not for \"%@\"", named, expected));
    }
    class_ = known;
}

void InterfaceLoader::chooseOwner(void* owner, int line) {
    const ObjectClass& known = *class_;
    if (owner == nullptr) {
        if (!known.make) {
            refuse(line,
                   stringWithFormat("the class \"%@\" cannot be made by an interface file", known.name));
            return;
        }
        interface_->ownedOwner_ = known.make();
        owner = interface_->ownedOwner_.get();
    }
    interface_->owner_ = owner;
}

void InterfaceLoader::resetOutlets() const {
    for (const auto& [name, set] : outlets()) {
        static_cast<void>(set(nullptr)); // always false: null has no kind
    }
}

std::span<const OutletOwner::Outlet> InterfaceLoader::outlets() const {
    const OutletOwner* owner = class_->outletOwner(interface_->owner_);
    return owner == nullptr ? std::span<const OutletOwner::Outlet>() : owner->outlets();
}

std::unique_ptr<InterfaceNode> InterfaceLoader::build(const pugi::xml_node& xml, const ElementRule& rule) {
    auto node = std::make_unique<InterfaceNode>();
    node->kind = rule.kind;
    node->line = lineAt(xml.offset_debug());
    readAttributes(xml, rule, *node);
    for (const pugi::xml_node& child : xml.children()) {
        buildChild(child, rule, *node);
    }
    if (rule.layout == Layout::One) {
        checkOneLayout(*node);
    }
    if (status_.isOk()) {
        makeElement(*node, rule);
    }
    if (status_.isOk()) {
        nameElement(*node);
        noteReferences(*node, rule);
        wireAction(*node);
    }
    return node;
}

void InterfaceLoader::readAttributes(const pugi::xml_node& xml, const ElementRule& rule,
                                     InterfaceNode& node) {
    for (const pugi::xml_attribute& attribute : xml.attributes()) {
        const AttributeRule* known = rule.attribute(attribute.name());
        if (known == nullptr) {
            refuse(node.line, stringWithFormat("<%@> has no attribute \"%@\"", elementName(node.kind),
                                               attribute.name()));
            return;
        }
        const std::string value = attribute.value();
        if (const std::string fault = faultOfValue(*known, value); !fault.empty()) {
            refuse(node.line, stringWithFormat("%@=\"%@\" of <%@> %@", attribute.name(), value,
                                               elementName(node.kind), fault));
        }
        const bool shown = known->kind == AttributeKind::Text && !value.empty();
        if (!node.attributes.emplace(attribute.name(), shown ? NSLocalizedString(value) : value).second) {
            refuse(node.line, stringWithFormat("<%@> has the attribute \"%@\" twice", elementName(node.kind),
                                               attribute.name()));
        }
        if (shown) {
            node.keys.emplace(attribute.name(), value);
        }
    }
    for (const AttributeRule& needed : rule.attributes) {
        if (needed.required && !node.attributes.contains(needed.name)) {
            refuse(node.line,
                   stringWithFormat("<%@> needs the attribute \"%@\"", elementName(node.kind), needed.name));
        }
    }
}

void InterfaceLoader::buildChild(const pugi::xml_node& xml, const ElementRule& rule, InterfaceNode& parent) {
    const int line = lineAt(xml.offset_debug());
    if (xml.type() != pugi::node_element) {
        // The node begins where the element before it ends. In its value a single CR has become a line end.
        const auto words = text_.find_first_not_of(" \t\r\n", static_cast<std::size_t>(xml.offset_debug()));
        refuse(words == std::string_view::npos ? line : lineAt(static_cast<std::ptrdiff_t>(words)),
               stringWithFormat("<%@> holds text; texts are attributes", elementName(parent.kind)));
        return;
    }
    const ElementRule* known = rule.child(xml.name());
    if (known == nullptr) {
        refuse(line, stringWithFormat("<%@> does not belong in <%@>", xml.name(), elementName(parent.kind)));
        return;
    }
    parent.children.push_back(build(xml, *known));
}

void InterfaceLoader::checkOneLayout(const InterfaceNode& node) {
    const auto count = std::count_if(node.children.begin(), node.children.end(),
                                     [](const auto& child) { return child->kind != InterfaceKind::Drawer; });
    if (count != 1) {
        refuse(node.line, stringWithFormat("<%@> holds %d layout elements; it needs one",
                                           elementName(node.kind), count));
    } else if (node.children.size() > 2) {
        refuse(node.line, stringWithFormat("<%@> has a second <drawer>", elementName(node.kind)));
    }
}

void InterfaceLoader::makeElement(InterfaceNode& node, const ElementRule& rule) {
    if (!rule.make) {
        return;
    }
    node.element = rule.make(node, {*class_, interface_->owner_,
                                    [this](int line, const std::string& fault) { refuse(line, fault); }});
    if (auto* window = dynamic_cast<NSWindow*>(node.element.get())) {
        noteWindow(*window, node.line);
    }
}

void InterfaceLoader::noteWindow(NSWindow& window, int line) {
    hasSheet_ = hasSheet_ || window.kind() == NSWindowKind::Sheet;
    if (window.kind() != NSWindowKind::Main) {
        return;
    }
    if (mainWindow_ != nullptr) {
        refuse(line, "the file has a second <window>; other windows are panels and sheets");
    }
    mainWindow_ = &window;
}

void InterfaceLoader::nameElement(const InterfaceNode& node) {
    const std::string& outlet = node.attribute("outlet");
    const std::string& name = outlet.empty() ? node.attribute("name") : outlet;
    if (name.empty()) {
        return;
    }
    if (!outlet.empty() && node.attributes.contains("name")) {
        refuse(node.line, stringWithFormat("the outlet \"%@\" has a name besides", outlet));
    }
    if (!interface_->byName_.emplace(name, &node).second) {
        refuse(node.line, stringWithFormat("the name \"%@\" is taken already", name));
    }
    node.element->setName(name);
    if (outlet.empty()) {
        return;
    }
    const auto known = outlets();
    const auto found = std::ranges::find(known, outlet, &OutletOwner::Outlet::name);
    if (found == known.end()) {
        refuse(node.line, stringWithFormat("the class \"%@\" has no outlet \"%@\"", class_->name, outlet));
    } else if (!found->set(node.element.get())) {
        refuse(node.line,
               stringWithFormat("the outlet \"%@\" of the class \"%@\" is of another kind than <%@>", outlet,
                                class_->name, elementName(node.kind)));
    }
    connectedOutlets_.insert(outlet);
}

void InterfaceLoader::noteReferences(const InterfaceNode& node, const ElementRule& rule) {
    for (const AttributeRule& attribute : rule.attributes) {
        if (attribute.kind == AttributeKind::Reference && node.attributes.contains(attribute.name)) {
            references_.emplace_back(node.line, node.attribute(attribute.name));
        }
    }
    for (const auto& side : parseShownWhen(node.attribute("when"))) {
        for (const ControlHas& each : side) {
            references_.emplace_back(node.line, each.control);
        }
    }
}

void InterfaceLoader::wireAction(const InterfaceNode& node) {
    auto* control = dynamic_cast<NSControl*>(node.element.get());
    if (control == nullptr) {
        return;
    }
    if (const std::string& also = node.attribute("also"); !also.empty() && !class_->actions.contains(also)) {
        refuse(node.line, stringWithFormat("the class \"%@\" has no operation \"%@\"", class_->name, also));
    }
    control->setEnabled(node.attribute("enabled") != "no");
    const std::string& operation = node.attribute("action");
    if (operation.empty()) {
        if (node.kind == InterfaceKind::Button && node.attribute("role").empty()) {
            refuse(node.line, "<button> needs the attribute \"action\"");
        }
        return;
    }
    const auto& actions = class_->actions;
    const auto found = actions.find(operation);
    if (found == actions.end()) {
        refuse(node.line,
               stringWithFormat("the class \"%@\" has no operation \"%@\"", class_->name, operation));
        return;
    }
    control->setAction({operation, [perform = found->second, owner = interface_->owner_](NSControl* sender) {
                            perform(owner, sender);
                        }});
    interface_->byOperation_.emplace(operation, control);
}

void InterfaceLoader::checkReferences() {
    for (const auto& [line, name] : references_) {
        if (!interface_->byName_.contains(name)) {
            refuse(line, stringWithFormat("the element refers to \"%@\", which is not in the file", name));
        }
    }
}

void InterfaceLoader::checkOutlets(int line) {
    std::string missing;
    for (const auto& [name, set] : outlets()) {
        if (!connectedOutlets_.contains(std::string(name))) {
            missing += (missing.empty() ? "\"" : ", \"") + std::string(name) + "\"";
        }
    }
    if (!missing.empty()) {
        refuse(line, stringWithFormat("outlets of the class \"%@\" are missing: %@", class_->name, missing));
    }
}

void InterfaceLoader::tellApplication() const {
    const auto& asDelegate = class_->applicationDelegate;
    interface_->delegate_ = asDelegate ? asDelegate(interface_->owner_) : nullptr;
    if (interface_->delegate_ == nullptr && mainWindow_ == nullptr && !hasSheet_) {
        return;
    }
    NSApplication& application = NSApp();
    interface_->application_ = &application;
    if (interface_->delegate_ != nullptr) {
        application.setDelegate(interface_->delegate_);
    }
    if (mainWindow_ != nullptr) {
        application.setMainWindow(mainWindow_);
    }
}

} // namespace platform
