#include "platform/appkit/InterfaceKinds.h"

#include "platform/foundation/NSString.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <initializer_list>
#include <stdexcept>

namespace platform {

namespace {

using enum AttributeKind;
using Attributes = std::vector<AttributeRule>;

const std::vector<InterfaceKind> layouts = {
    InterfaceKind::Column,    InterfaceKind::Row,       InterfaceKind::Grid,        InterfaceKind::Box,
    InterfaceKind::Spacer,    InterfaceKind::Separator, InterfaceKind::Label,       InterfaceKind::TabView,
    InterfaceKind::TableView, InterfaceKind::TextField, InterfaceKind::SecureField, InterfaceKind::Button,
    InterfaceKind::CheckBox,  InterfaceKind::PopUp,     InterfaceKind::Matrix,      InterfaceKind::TextView};

const Attributes named = {{"outlet", Word}, {"name", Word}};
const Attributes sized = {{"stretch", Size}, {"width", Size}};
// What a screen reader calls an element that has no title or label beside it. `describedBy` names the label
// that says more.
const AttributeRule spoken = {"spoken", Text};
const Attributes control = {
    {"action", Word}, {"enabled", YesNo}, {"toolTip", Text}, spoken, {"describedBy", Word}};
const Attributes field = {{"text", Text}, {"placeholder", Text}, {"delegate", YesNo}, {"maxWidth", Size}};
const Attributes window = {{"title", Text}, {"width", Size}, {"height", Size}, {"delegate", YesNo}};
// The question that the window asks before the action; "%@" in it stands for the text of the field `about`.
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

std::vector<ElementRule> windowRules() {
    using enum InterfaceKind;
    std::vector<InterfaceKind> inWindow = layouts;
    inWindow.push_back(Drawer);
    return {
        {Interface, "interface", nullptr, {{"class", Word, "", true}}, {MenuBar, Window, Sheet, Panel}},
        {MenuBar, "menuBar", nullptr, {}, {Menu}},
        {Menu, "menu", nullptr, {{"title", Text, "", true}}, {MenuItem, MenuSeparator}},
        {MenuItem, "item", makeMenuItem,
         joined({named,
                 control,
                 asked,
                 {{"title", Text, "", true},
                  {"key", Word},
                  {"edits", Word}, // as for a button
                  {"role", Choice, "about|quit|preferences|guide"}}})},
        {MenuSeparator, "separator"},
        {Window, "window", makeWindow, joined({named, window}), inWindow, true},
        {Sheet, "sheet", makeWindow, joined({named, window}), layouts, true},
        {Panel, "panel", makeWindow, joined({named, window}), layouts, true},
        {Drawer, "drawer", makeDrawer, joined({named, {{"width", Size}, spoken}}), layouts, true},
    };
}

std::vector<ElementRule> layoutRules() {
    using enum InterfaceKind;
    return {
        {Column, "column", nullptr, sized, layouts},
        // A drawer's content scrolls, except for a row at its `foot`.
        {Row, "row", nullptr, joined({sized, {{"foot", YesNo}}}), layouts},
        {Grid, "grid", nullptr, joined({sized, {{"columns", Size, "", true}}}), layouts},
        {Box, "box", nullptr, joined({sized, {{"title", Text}}}), layouts},
        {Spacer, "spacer", nullptr, sized},
        {Separator, "separator", nullptr, sized},
        {Label, "label", makeLabel,
         joined({named,
                 sized,
                 {{"text", Text},
                  {"toolTip", Text},
                  {"for", Word},
                  {"about", Word},
                  {"style", Choice, "note|heading|warning"},
                  {"when", Word}, // with which values of other controls it is shown
                  indent}})},
        {TabView,
         "tabView",
         makeTabView,
         joined({named, sized, {{"tabs", Choice, "hidden"}, {"delegate", YesNo}}}),
         {Tab}},
        {Tab, "tab", nullptr, {{"label", Text, "", true}}, layouts, true},
    };
}

std::vector<ElementRule> controlRules() {
    using enum InterfaceKind;
    const Attributes common = joined({named, sized, control});
    return {
        // In the window, text typed into the field counts as chosen in the panel that `chooses` opens. A
        // number lies between `least` and `most`; the value `unlimited` means no limit. The name in the field
        // is that of a row of the table `namesRow`; where it is not the selected row's, the window says
        // `another`.
        {TextField, "textField", makeField,
         joined({common,
                 field,
                 {{"chooses", Word},
                  {"least", Integer},
                  {"most", Word},
                  {"unlimited", Integer},
                  {"mayBeEmpty", YesNo},
                  {"folder", YesNo},
                  {"namesRow", Word},
                  {"records", Word},
                  {"another", Text}}})},
        {SecureField, "secureField", makeField, joined({common, field})},
        {Button, "button", makeButton,
         joined({common,
                 asked,
                 {{"title", Text},
                  {"image", YesNo},
                  {"tabStop", YesNo},
                  {"reverts", Word},
                  {"offWith", Word},
                  // "new" and "edit" start the editor of the table `reverts` in the field `edits`; "new" also
                  // performs the operation `also`.
                  {"role", Choice, "cancel|new|edit|delete|refresh"},
                  {"edits", Word},
                  {"checks", YesNo}, // checks the limits of the fields on its page
                  {"also", Word},
                  key}})},
        {CheckBox, "checkBox", makeButton,
         joined({common, {{"title", Text}, {"state", Choice, "on|off"}, {"rowOf", Word}, indent}})},
        // The selected item is the one whose number is in the `column` of the selected row of the table
        // `rowOf`.
        {PopUp,
         "popUp",
         makePopUp,
         joined({common, {{"typeAhead", YesNo}, {"rowOf", Word}, {"column", Word}}}),
         {PopUpItem}},
        {PopUpItem, "item", nullptr, {{"title", Text, "", true}, {"tag", Integer}, {"selected", YesNo}}},
        {Matrix,
         "matrix",
         makeMatrix,
         joined({common, {{"rows", Size, "", true}, {"columns", Size, "", true}, indent}}),
         {Cell}},
        {Cell, "cell", nullptr, {{"title", Text, "", true}}},
        {TableView,
         "tableView",
         makeTable,
         joined({common,
                 {{"multiple", YesNo},
                  {"height", Size},
                  {"nameColumn", Word},
                  // What an empty table shows instead of rows: a text, and the button `begin` under another
                  // title.
                  {"empty", Text},
                  {"begin", Word},
                  {"beginTitle", Text}}}),
         {TableColumn}},
        {TableColumn,
         "column",
         nullptr,
         {{"id", Word, "", true},
          {"title", Text},
          {"width", Size},
          {"hidden", YesNo},
          // How a window shows the values: "check" marks those that mean yes, "privileges" spells out a
          // folder's privileges, "value" leaves a missing one empty, "list" separates what is joined by
          // commas.
          {"display", Choice, "check|privileges|value|list"}}},
        {TextView, "textView", makeTextView, joined({named, sized, {{"height", Size}, spoken}})},
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
    for (const InterfaceKind child : children) {
        const ElementRule& rule = ruleOf(child);
        if (rule.element == elementName) {
            return &rule;
        }
    }
    return nullptr;
}

const ElementRule& ruleOf(InterfaceKind kind) {
    const auto found = std::ranges::find(rules(), kind, &ElementRule::kind);
    if (found == rules().end()) {
        throw std::logic_error("a kind of element is missing from the table of kinds");
    }
    return *found;
}

std::string_view elementName(InterfaceKind kind) {
    return ruleOf(kind).element;
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
