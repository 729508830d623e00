#pragma once

#include "platform/appkit/Interface.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace platform {

/// What a function that makes a model gets besides the node. The node's children are already complete.
struct ModelMaking {
    const ObjectClass& ownerClass;
    void* owner;
    /// Refuses the file because of that line. The model that is then returned is thrown away.
    std::function<void(int line, const std::string& fault)> refuse;
};

/// Makes a node's model from its attributes and children.
using MakeModelFunction = std::unique_ptr<Element> (*)(const InterfaceNode& node, const ModelMaking& making);

/// Such a function, or none. Says by itself whether there is one: a build with sanitizers does not compare
/// the address of a function with null at compile time.
class MakeModel {
  public:
    constexpr MakeModel(std::nullptr_t /*none*/) {}

    constexpr MakeModel(MakeModelFunction function) : function_(function), exists_(true) {}

    constexpr explicit operator bool() const { return exists_; }

    std::unique_ptr<Element> operator()(const InterfaceNode& node, const ModelMaking& making) const {
        return function_(node, making);
    }

  private:
    MakeModelFunction function_ = nullptr;
    bool exists_ = false;
};

[[nodiscard]] std::unique_ptr<Element> makeWindow(const InterfaceNode& node, const ModelMaking& making);
[[nodiscard]] std::unique_ptr<Element> makeDrawer(const InterfaceNode& node, const ModelMaking& making);
[[nodiscard]] std::unique_ptr<Element> makeMenuItem(const InterfaceNode& node, const ModelMaking& making);
[[nodiscard]] std::unique_ptr<Element> makeButton(const InterfaceNode& node, const ModelMaking& making);
/// Returns null for a label without an outlet or a name: nothing changes it, so it is part of the layout.
[[nodiscard]] std::unique_ptr<Element> makeLabel(const InterfaceNode& node, const ModelMaking& making);
[[nodiscard]] std::unique_ptr<Element> makeField(const InterfaceNode& node, const ModelMaking& making);
[[nodiscard]] std::unique_ptr<Element> makePopUp(const InterfaceNode& node, const ModelMaking& making);
[[nodiscard]] std::unique_ptr<Element> makeMatrix(const InterfaceNode& node, const ModelMaking& making);
[[nodiscard]] std::unique_ptr<Element> makeTable(const InterfaceNode& node, const ModelMaking& making);
[[nodiscard]] std::unique_ptr<Element> makeTextView(const InterfaceNode& node, const ModelMaking& making);
[[nodiscard]] std::unique_ptr<Element> makeTabView(const InterfaceNode& node, const ModelMaking& making);

} // namespace platform
