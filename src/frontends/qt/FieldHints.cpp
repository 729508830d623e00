#include "frontends/qt/FieldHints.h"

#include "frontends/qt/NodeAttributes.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/ShownWhen.h"
#include "platform/foundation/NSBundle.h"
#include "platform/posix/WholeNumber.h"
#include "review/DirectoryState.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>

namespace frontend {

using platform::InterfaceNode;

namespace {

std::string nameHint(const InterfaceNode& node, const NSTextField& field, const WindowActions& actions) {
    auto* table = actions.find<NSTableView>(node.attribute("namesRow"));
    const InterfaceNode* tableNode = actions.interface().findNode(node.attribute("namesRow"));
    const std::string& name = field.stringValue();
    if (table == nullptr || tableNode == nullptr || name.empty() || !field.isEdited()) {
        return {};
    }
    const NSTableColumn* column = table->tableColumnWithIdentifier(tableNode->attribute("nameColumn"));
    if (column == nullptr) {
        return {};
    }
    const std::string selected =
        table->selectedRow() < 0 ? std::string() : table->objectValue(*column, table->selectedRow());
    if (name == selected) {
        return {};
    }
    const auto isThere = [&name] {
        return stringWithFormat(NSLocalizedString("“%@” already exists: the button changes it."), name);
    };
    std::string similar;
    for (int row = 0; row < table->numberOfRows(); ++row) {
        std::string other = table->objectValue(*column, row);
        if (other == name) {
            return isThere();
        }
        if (other.size() == name.size() && shown(other).compare(shown(name), Qt::CaseInsensitive) == 0) {
            similar = std::move(other);
        }
    }
    if (!similar.empty()) {
        return stringWithFormat(
            NSLocalizedString("“%@” already exists, and differs only in the case of letters."), similar);
    }
    // The lists leave out system accounts.
    if (const std::string& records = node.attribute("records");
        !records.empty() && review::hasRecord(records + name)) {
        return isThere();
    }
    return selected.empty() ? std::string() : stringWithFormat(node.attribute("another"), selected);
}

std::string folderHint(const NSTextField& field) {
    const std::string& path = field.stringValue();
    if (path.empty() || path == NSLocalizedString("Directory Not Set")) {
        return {};
    }
    if (!path.starts_with('/')) {
        return NSLocalizedString("The path of a folder begins with a slash.");
    }
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (std::filesystem::is_directory(status)) {
        return {};
    }
    return NSLocalizedString(status.type() == std::filesystem::file_type::not_found
                                 ? "There is no such folder."
                             : std::filesystem::exists(status) ? "This is not a folder."
                                                               : "This folder cannot be examined.");
}

std::string valueOf(const platform::Element* control) {
    if (const auto* menu = dynamic_cast<const NSPopUpButton*>(control)) {
        return std::to_string(menu->indexOfSelectedItem());
    }
    const auto* box = dynamic_cast<const NSButton*>(control);
    return box != nullptr && box->state() == NSOnState ? "on" : "off";
}

} // namespace

std::string limitProblem(const InterfaceNode& node) {
    const auto* field = modelOf<NSTextField>(node);
    const auto least = platform::wholeNumber<std::int64_t>(node.attribute("least"));
    const auto most = platform::wholeNumber<std::int64_t>(node.attribute("most"));
    if (field == nullptr || !least || !field->isEdited() || !field->isEnabled()) {
        return {};
    }
    const std::string& text = field->stringValue();
    const auto number = platform::wholeNumber<std::int64_t>(text);
    const bool isWithin = number ? *number >= *least && *number <= most.value_or(INT32_MAX)
                                 : text.empty() && isYes(node, "mayBeEmpty");
    if (isWithin) {
        return {};
    }
    // A number too long to be read is also above the limit.
    const bool isTooHigh =
        number ? *number > INT32_MAX : !text.empty() && std::ranges::all_of(text, [](char digit) {
            return digit >= '0' && digit <= '9';
        });
    return most || isTooHigh
               ? stringWithFormat(NSLocalizedString("A whole number from %@ to %@."), std::to_string(*least),
                                  std::to_string(most.value_or(INT32_MAX)))
               : stringWithFormat(NSLocalizedString("A whole number, %@ or more."), std::to_string(*least));
}

std::string fieldHint(const InterfaceNode& node, const WindowActions& actions) {
    const auto* field = modelOf<NSTextField>(node);
    if (field == nullptr) {
        return {};
    }
    if (isYes(node, "folder")) {
        return folderHint(*field);
    }
    std::string problem = limitProblem(node);
    return problem.empty() ? nameHint(node, *field, actions) : problem;
}

bool isShown(const InterfaceNode& node, const WindowActions& actions) {
    const std::string& when = node.attribute("when");
    const auto sides = platform::parseShownWhen(when);
    return when.empty() || std::ranges::any_of(sides, [&](const auto& side) {
               return std::ranges::all_of(side, [&](const platform::ControlHas& each) {
                   return valueOf(actions.interface().find(each.control)) == each.value;
               });
           });
}

} // namespace frontend
