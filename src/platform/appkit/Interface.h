#pragma once

#include "platform/appkit/Element.h"
#include "platform/appkit/InterfaceKind.h"
#include "platform/appkit/ObjectClass.h"
#include "platform/posix/Status.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// One element of an interface file, in its place in the tree that a front-end lays out.
struct InterfaceNode {
    InterfaceKind kind = InterfaceKind::Interface;
    std::map<std::string, std::string, std::less<>>
        attributes; ///< strings that the user sees are already localized
    std::map<std::string, std::string, std::less<>> keys; ///< the keys of those strings in the string table
    std::vector<std::unique_ptr<InterfaceNode>> children;
    std::unique_ptr<Element> element; ///< its model; null when the element only lays out others
    int line = 0;

    /// The attribute's value, or "" when there is none.
    [[nodiscard]] const std::string& attribute(std::string_view name) const;
    /// The attribute's key in the string table, which is the same in every language; "" when there is none.
    [[nodiscard]] const std::string& key(std::string_view name) const;
};

/// Calls `visit` with the node and every node below it, in the file's order.
template <class Visit>
void visitNodes(const InterfaceNode& node, const Visit& visit) {
    visit(node);
    for (const auto& child : node.children) {
        visitNodes(*child, visit);
    }
}

/// A loaded interface file: the tree of its windows and menus, with look-up by name and by operation. It owns
/// the controls and, if the file made it, the object that they are wired to.
class Interface {
  public:
    /// Loads `path` for `owner`, an object of the registered class `ownerClass`, or for a new object of that
    /// class when `owner` is null. Connects outlets, actions and delegates, then tells the presenter. Fails
    /// ("FILE:LINE: what is wrong") when the file cannot be read, is not well formed, is for another class,
    /// names an unknown element, attribute, outlet or operation, uses an outlet of the wrong kind or a name
    /// twice, or leaves out one of the class's outlets. In that case no outlet stays connected, and the
    /// presenter is not told.
    [[nodiscard]] static Result<std::unique_ptr<Interface>>
    load(const std::string& path, const std::string& ownerClass, void* owner = nullptr);
    ~Interface();

    [[nodiscard]] const InterfaceNode& root() const { return *root_; }

    [[nodiscard]] void* owner() const { return owner_; }

    /// The element of that name (an outlet's or the file's own), or null.
    [[nodiscard]] Element* find(const std::string& name) const;
    /// The node of that element, or null.
    [[nodiscard]] const InterfaceNode* findNode(const std::string& name) const;
    /// The first control or menu item, in the file's order, that is wired to the operation, or null.
    [[nodiscard]] NSControl* findWiredTo(const std::string& operation) const;

  private:
    friend class InterfaceLoader;
    Interface() = default;

    std::unique_ptr<InterfaceNode> root_;
    std::shared_ptr<void> ownedOwner_; ///< an owner that the file made; destroyed before the controls
    void* owner_ = nullptr;
    NSApplication* application_ = nullptr;      ///< set if it may refer to a window or the owner of this file
    NSApplicationDelegate* delegate_ = nullptr; ///< the owner, if it is the application's delegate
    std::map<std::string, const InterfaceNode*, std::less<>> byName_;
    std::map<std::string, NSControl*, std::less<>> byOperation_;
};

} // namespace platform
