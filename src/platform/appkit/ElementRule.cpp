#include "platform/appkit/ElementRule.h"

#include "platform/appkit/InterfaceTable.h"
#include "platform/foundation/NSString.h"
#include "platform/posix/WholeNumber.h"

#include <algorithm>
#include <cstdint>

namespace platform {

namespace {

bool isWholeNumber(std::string_view text, std::int32_t least) {
    const auto number = wholeNumber<std::int32_t>(text);
    return number && *number >= least;
}

bool mayHold(const ElementRule& parent, const ElementRule& child) {
    return std::ranges::find(parent.children, child.kind) != parent.children.end() ||
           (parent.layout != Layout::None && child.place == Place::InLayout);
}

} // namespace

const AttributeRule* ElementRule::attribute(std::string_view name) const {
    const auto* found = std::ranges::find(attributes, name, &AttributeRule::name);
    return found == attributes.end() ? nullptr : found;
}

const ElementRule* ElementRule::child(std::string_view elementName) const {
    const auto* found = std::ranges::find_if(elementRules, [&](const ElementRule& rule) {
        return rule.element == elementName && mayHold(*this, rule);
    });
    return found == elementRules.end() ? nullptr : found;
}

const ElementRule& ruleOf(InterfaceKind kind) {
    return elementRules.at(static_cast<std::size_t>(kind));
}

std::string_view elementName(InterfaceKind kind) {
    return ruleOf(kind).element;
}

std::string faultOfValue(const AttributeRule& rule, std::string_view text) {
    using enum AttributeKind;
    switch (rule.kind) {
    case Text:
        return "";
    case Word:
    case Reference:
        return text.empty() ? "is empty" : "";
    case YesNo:
        return text == "yes" || text == "no" ? "" : "must be \"yes\" or \"no\"";
    case Size:
        return isWholeNumber(text, 0) ? "" : "must be a whole number from 0";
    case Integer:
        return isWholeNumber(text, INT32_MIN) ? "" : "must be a whole number of 32 bits";
    case Choice:
        break;
    }
    const auto choices = componentsSeparatedByString(rule.choices, "|");
    return std::find(choices.begin(), choices.end(), text) != choices.end()
               ? ""
               : stringWithFormat("must be one of %@", rule.choices);
}

} // namespace platform
