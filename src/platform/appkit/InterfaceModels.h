#pragma once

#include "platform/appkit/Interface.h"

#include <functional>
#include <memory>
#include <string>

namespace platform {

/// What the makers of models get in addition to the node, whose children are complete.
struct ModelMaking {
    const ObjectClass& ownerClass;
    void* owner;
    /// Refuses the file because of that line. What the maker returns is then thrown away.
    std::function<void(int line, const std::string& fault)> refuse;
};

/// Makes a node's model from its attributes and children.
using MakeModel = std::unique_ptr<Element> (*)(const InterfaceNode& node, const ModelMaking& making);

[[nodiscard]] std::unique_ptr<Element> makeWindow(const InterfaceNode& node, const ModelMaking& making);
[[nodiscard]] std::unique_ptr<Element> makeDrawer(const InterfaceNode& node, const ModelMaking& making);
[[nodiscard]] std::unique_ptr<Element> makeMenuItem(const InterfaceNode& node, const ModelMaking& making);
[[nodiscard]] std::unique_ptr<Element> makeButton(const InterfaceNode& node, const ModelMaking& making);
/// A label has a model only where something fills it; otherwise it is a text of the layout.
[[nodiscard]] std::unique_ptr<Element> makeLabel(const InterfaceNode& node, const ModelMaking& making);
[[nodiscard]] std::unique_ptr<Element> makeField(const InterfaceNode& node, const ModelMaking& making);
[[nodiscard]] std::unique_ptr<Element> makePopUp(const InterfaceNode& node, const ModelMaking& making);
[[nodiscard]] std::unique_ptr<Element> makeMatrix(const InterfaceNode& node, const ModelMaking& making);
[[nodiscard]] std::unique_ptr<Element> makeTable(const InterfaceNode& node, const ModelMaking& making);
[[nodiscard]] std::unique_ptr<Element> makeTextView(const InterfaceNode& node, const ModelMaking& making);
[[nodiscard]] std::unique_ptr<Element> makeTabView(const InterfaceNode& node, const ModelMaking& making);

} // namespace platform
