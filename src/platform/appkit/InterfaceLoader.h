#pragma once

#include "platform/appkit/ElementRule.h"
#include "platform/appkit/Interface.h"

#include <cstddef>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace pugi {
class xml_node;
}

namespace platform {

/// Reads one interface file and makes its models. Each object serves one call of Interface::load.
class InterfaceLoader {
  public:
    explicit InterfaceLoader(std::string path) : path_(std::move(path)) {}

    [[nodiscard]] Result<std::unique_ptr<Interface>> load(const std::string& ownerClass, void* owner);

  private:
    /// Records why the file is refused. Only the first fault is kept; whatever is read after it is thrown
    /// away.
    void refuse(int line, const std::string& fault);
    [[nodiscard]] int lineAt(std::ptrdiff_t offset) const;

    void chooseClass(const std::string& named, const std::string& expected, int line);
    void chooseOwner(void* owner, int line);
    void resetOutlets() const;
    [[nodiscard]] std::span<const OutletOwner::Outlet> outlets() const;

    // From XML to nodes. A node is checked against its kind's rule before its model is made.
    [[nodiscard]] std::unique_ptr<InterfaceNode> build(const pugi::xml_node& xml, const ElementRule& rule);
    void readAttributes(const pugi::xml_node& xml, const ElementRule& rule, InterfaceNode& node);
    void buildChild(const pugi::xml_node& xml, const ElementRule& rule, InterfaceNode& parent);
    void checkOneLayout(const InterfaceNode& node);

    // From nodes to models. A node's children are complete by then.
    void makeElement(InterfaceNode& node, const ElementRule& rule);
    void noteWindow(NSWindow& window, int line);

    // Connections.
    void nameElement(const InterfaceNode& node);
    void noteReferences(const InterfaceNode& node, const ElementRule& rule);
    void wireAction(const InterfaceNode& node);
    void checkReferences();
    /// Every outlet must be connected, so that the class may use them unchecked.
    void checkOutlets(int line);
    void tellApplication() const;

    std::string path_;
    Status status_;
    std::string_view text_; ///< the file, while it is loaded
    std::vector<std::size_t> lineStarts_;
    std::unique_ptr<Interface> interface_;
    const ObjectClass* class_ = nullptr;
    NSWindow* mainWindow_ = nullptr;
    bool hasSheet_ = false;
    std::set<std::string> connectedOutlets_;
    std::vector<std::pair<int, std::string>>
        references_; ///< the lines of attributes that name other elements, with those names
};

} // namespace platform
