#include "platform/appkit/InterfaceGrammar.h"

#include "platform/foundation/NSString.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <initializer_list>

namespace platform {

namespace {

using enum AttributeKind;
using Attributes = std::vector<AttributeRule>;

const std::vector<std::string_view> layouts = {
    "column",    "row",       "grid",        "box",    "spacer",   "separator", "label",  "tabView",
    "tableView", "textField", "secureField", "button", "checkBox", "popUp",     "matrix", "textView"};

const Attributes named = {{"outlet", Word}, {"name", Word}};
const Attributes sized = {{"stretch", Size}, {"width", Size}, {"span", Size}};
const Attributes control = {{"action", Word}, {"enabled", YesNo}, {"toolTip", Text}};
const Attributes field = {
    {"text", Text}, {"placeholder", Text}, {"editable", YesNo}, {"delegate", YesNo}, {"maxWidth", Size}};
const Attributes window = {{"title", Text}, {"width", Size}, {"height", Size}, {"delegate", YesNo}};
// What the window asks before the action; "%@" in it is what the field `about` shows.
const Attributes asked = {{"confirm", Text}, {"about", Word}};
const AttributeRule key = {"key", Choice, "return|escape"};
const AttributeRule indent = {"indent", Size};

Attributes joined(std::initializer_list<Attributes> parts) {
    Attributes all;
    for (const Attributes& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

std::vector<ElementRule> controlRules() {
    const Attributes common = joined({named, sized, control});
    return {
        // What is typed into the field counts in the window as chosen in the panel that `chooses` opens.
        {"textField", "textField", joined({common, field, {{"chooses", Word}}}), {}},
        {"secureField", "secureField", joined({common, field}), {}},
        {"button",
         "button",
         joined({named,
                 sized,
                 control,
                 asked,
                 {{"title", Text},
                  {"image", YesNo},
                  {"tabStop", YesNo},
                  {"reverts", Word},
                  {"offWith", Word},
                  {"role", Choice, "cancel|new"},
                  key}}),
         {}},
        {"checkBox",
         "checkBox",
         joined({common, {{"title", Text}, {"state", Choice, "on|off"}, {"rowOf", Word}, indent}}),
         {}},
        // What the menu selects is the number in the `column` of the selected row of the table `rowOf`.
        {"popUp",
         "popUp",
         joined({common, {{"typeAhead", YesNo}, {"rowOf", Word}, {"column", Word}}}),
         {"popUpItem"}},
        {"popUpItem", "item", {{"title", Text, "", true}, {"tag", Integer}, {"selected", YesNo}}, {}},
        {"matrix",
         "matrix",
         joined({common, {{"rows", Size, "", true}, {"columns", Size, "", true}, indent}}),
         {"cell"}},
        {"cell", "cell", {{"title", Text, "", true}}, {}},
        {"tableView",
         "tableView",
         joined({common, {{"multiple", YesNo}, {"height", Size}, {"nameColumn", Word}}}),
         {"tableColumn"}},
        {"tableColumn",
         "column",
         {{"id", Word, "", true}, {"title", Text}, {"width", Size}, {"hidden", YesNo}},
         {}},
        {"textView", "textView", joined({named, sized, {{"height", Size}}}), {}},
        {"tabView",
         "tabView",
         joined({named, sized, {{"tabs", Choice, "hidden"}, {"delegate", YesNo}}}),
         {"tab"}},
        {"tab", "tab", {{"label", Text, "", true}}, layouts, true},
    };
}

std::vector<ElementRule> layoutRules() {
    const AttributeRule spacing = {"spacing", Size};
    return {
        {"column", "column", joined({sized, {spacing}}), layouts},
        {"row", "row", joined({sized, {spacing}}), layouts},
        {"grid", "grid", joined({sized, {spacing, {"columns", Size, "", true}}}), layouts},
        {"box", "box", joined({sized, {spacing, {"title", Text}}}), layouts},
        {"spacer", "spacer", sized, {}},
        {"separator", "separator", sized, {}},
        {"label",
         "label",
         joined({named,
                 sized,
                 {{"text", Text},
                  {"toolTip", Text},
                  {"for", Word},
                  {"about", Word},
                  {"style", Choice, "note|heading|warning"},
                  indent}}),
         {}},
    };
}

std::vector<ElementRule> windowRules() {
    std::vector<std::string_view> inWindow = layouts;
    inWindow.emplace_back("drawer");
    return {
        {"interface", "interface", {{"class", Word, "", true}}, {"menuBar", "window", "sheet", "panel"}},
        {"menuBar", "menuBar", {}, {"menu"}},
        {"menu", "menu", {{"title", Text, "", true}}, {"menuItem", "menuSeparator"}},
        {"menuItem",
         "item",
         joined({named,
                 control,
                 asked,
                 {{"title", Text, "", true}, {"key", Word}, {"role", Choice, "about|quit|preferences"}}}),
         {}},
        {"menuSeparator", "separator", {}, {}},
        {"window", "window", joined({named, window}), inWindow, true},
        {"sheet", "sheet", joined({named, window}), layouts, true},
        {"panel", "panel", joined({named, window}), layouts, true},
        {"drawer", "drawer", joined({named, {{"edge", Choice, "left|right"}, {"width", Size}}}), layouts,
         true},
    };
}

const std::vector<ElementRule>& rules() {
    static const std::vector<ElementRule> all = [] {
        std::vector<ElementRule> made;
        for (const auto& part : {windowRules(), layoutRules(), controlRules()}) {
            made.insert(made.end(), part.begin(), part.end());
        }
        return made;
    }();
    return all;
}

const ElementRule& ruleOf(std::string_view id) {
    return *std::find_if(rules().begin(), rules().end(),
                         [id](const ElementRule& rule) { return rule.id == id; });
}

bool isWholeNumber(std::string_view text, std::int32_t least) {
    std::int32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() && number >= least;
}

} // namespace

const AttributeRule* ElementRule::attribute(std::string_view name) const {
    const auto found = std::find_if(attributes.begin(), attributes.end(),
                                    [name](const AttributeRule& rule) { return rule.name == name; });
    return found == attributes.end() ? nullptr : &*found;
}

const ElementRule* ElementRule::child(std::string_view elementName) const {
    for (const std::string_view childId : children) {
        const ElementRule& rule = ruleOf(childId);
        if (rule.element == elementName) {
            return &rule;
        }
    }
    return nullptr;
}

const ElementRule& interfaceRule() {
    return ruleOf("interface");
}

bool isLayout(const ElementRule& rule) {
    return std::find(layouts.begin(), layouts.end(), rule.id) != layouts.end();
}

std::string faultOfValue(const AttributeRule& rule, std::string_view text) {
    switch (rule.kind) {
    case Text:
        return "";
    case Word:
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
