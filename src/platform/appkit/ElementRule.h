#pragma once

#include "platform/appkit/InterfaceModels.h"
#include "platform/appkit/ShortList.h"

#include <string>
#include <string_view>

namespace platform {

/// What the value of an attribute may be.
enum class AttributeKind {
    Text,      ///< anything; the user sees it, so it passes through the string table
    Word,      ///< a name, an operation or an identifier; not empty
    Reference, ///< the name of another element of the file
    YesNo,     ///< "yes" or "no"
    Size,      ///< a whole number from 0
    Integer,   ///< a whole number of 32 bits
    Choice     ///< one of the rule's choices
};

struct AttributeRule {
    std::string_view name;
    AttributeKind kind = AttributeKind::Text;
    std::string_view choices = {}; ///< separated by "|"
    bool required = false;
};

/// Where an element may be.
enum class Place {
    Named,   ///< only in elements that list it as a child
    InLayout ///< there, and wherever there is a layout
};

/// Which layout elements an element holds besides the children that it lists.
enum class Layout {
    None,
    One, ///< exactly one, which fills it
    Any
};

/// One kind of element of an interface file: how it is written, which attributes it takes, which elements it
/// may hold, and how its model is made.
struct ElementRule {
    InterfaceKind kind;
    Place place = Place::Named;
    std::string_view element; ///< the XML element's name; a layout's column and a table's column share one
    MakeModel make = nullptr; ///< none for an element without a model
    ShortList<AttributeRule, 24> attributes = {};
    ShortList<InterfaceKind, 4> children = {};
    Layout layout = Layout::None;

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
