#pragma once

#include "platform/appkit/InterfaceModels.h"

#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// What the value of an attribute may be.
enum class AttributeKind {
    Text,    ///< anything; the user sees it, so it passes through the string table
    Word,    ///< a name, an operation or an identifier; not empty
    YesNo,   ///< "yes" or "no"
    Size,    ///< a whole number from 0
    Integer, ///< a whole number of 32 bits
    Choice   ///< one of the rule's choices
};

struct AttributeRule {
    std::string_view name;
    AttributeKind kind = AttributeKind::Text;
    std::string_view choices = {}; ///< separated by "|"
    bool required = false;
};

/// One kind of element of an interface file: how it is written, which attributes it takes, which elements it
/// may hold, and how its model is made.
struct ElementRule {
    InterfaceKind kind;
    std::string_view element; ///< the XML element's name; a layout's column and a table's column share one
    MakeModel make = nullptr; ///< null for an element without a model
    std::vector<AttributeRule> attributes = {};
    std::vector<InterfaceKind> children = {};
    bool oneLayout = false; ///< must hold exactly one layout element, which fills it

    [[nodiscard]] const AttributeRule* attribute(std::string_view name) const;
    /// The rule for an element of that name inside this one, or null when it may not be here.
    [[nodiscard]] const ElementRule* child(std::string_view elementName) const;
};

[[nodiscard]] const ElementRule& ruleOf(InterfaceKind kind);

/// The XML element's name.
[[nodiscard]] std::string_view elementName(InterfaceKind kind);

/// Why `text` is not a valid value for the attribute; "" when it is one.
[[nodiscard]] std::string faultOfValue(const AttributeRule& rule, std::string_view text);

} // namespace platform
