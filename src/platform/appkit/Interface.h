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

/// One element of an interface file, in its place: what a front-end lays out.
struct InterfaceNode {
    InterfaceKind kind = InterfaceKind::Interface;
    std::map<std::string, std::string, std::less<>>
        attributes; ///< strings that the user sees are localized already
    std::map<std::string, std::string, std::less<>> keys; ///< what those strings are localized from
    std::vector<std::unique_ptr<InterfaceNode>> children;
    std::unique_ptr<Element> element; ///< the model behind it; null for mere layout
    int line = 0;

    /// The attribute's value, or "" when there is none.
    [[nodiscard]] const std::string& attribute(std::string_view name) const;
    /// The same before it was localized, so that it is called the same in every language.
    [[nodiscard]] const std::string& key(std::string_view name) const;
};

/// Calls `visit` with the node and all below it, in the file's order.
template <class Visit>
void visitNodes(const InterfaceNode& node, const Visit& visit) {
    visit(node);
    for (const auto& child : node.children) {
        visitNodes(*child, visit);
    }
}

/// A loaded interface file: the tree of its windows and menus, and look-up by name and by operation. It owns
/// the controls and, where the file made it, their owner.
class Interface {
  public:
    /// Loads `path` for `owner`, an object of the registered class `ownerClass`, or for a new object of that
    /// class when `owner` is null. Connects outlets, actions and delegates, then tells the presenter.
    /// Fails ("FILE:LINE: what is wrong") for a file that cannot be read, is not well formed, is for another
    /// class, names an unknown element, attribute, outlet or operation, an outlet of another kind, or a name
    /// twice, or leaves an outlet of the class out; no outlet stays connected then, and the presenter is not
    /// told.
    [[nodiscard]] static Result<std::unique_ptr<Interface>>
    load(const std::string& path, const std::string& ownerClass, void* owner = nullptr);
    ~Interface();

    [[nodiscard]] const InterfaceNode& root() const { return *root_; }

    [[nodiscard]] void* owner() const { return owner_; }

    /// The element of that name (outlet or other), or null.
    [[nodiscard]] Element* find(const std::string& name) const;
    /// The node of that element, or null.
    [[nodiscard]] const InterfaceNode* findNode(const std::string& name) const;
    /// The first control or menu item, in the file's order, that is wired to the operation, or null.
    [[nodiscard]] NSControl* findWiredTo(const std::string& operation) const;

  private:
    friend class InterfaceLoader;
    Interface() = default;

    std::unique_ptr<InterfaceNode> root_;
    std::shared_ptr<void> ownedOwner_; ///< keeps an owner that the file made; destroyed before the controls
    void* owner_ = nullptr;
    NSApplication* application_ = nullptr;      ///< set where it may know a window or the owner of this file
    NSApplicationDelegate* delegate_ = nullptr; ///< the owner, where it is the application's delegate
    std::map<std::string, const InterfaceNode*, std::less<>> byName_;
    std::map<std::string, NSControl*, std::less<>> byOperation_;
};

} // namespace platform
