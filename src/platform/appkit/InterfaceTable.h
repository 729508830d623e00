#pragma once

#include "platform/appkit/ElementRule.h"

#include <algorithm>
#include <array>

namespace platform {

// The table of all kinds of elements, in three parts. It is a constant, so that the compiler can compare it
// with another layer's table (the window's widgets, what a script shows): see hasLineForEach.

namespace interfacetable {

using enum AttributeKind;
using Attributes = decltype(ElementRule::attributes);

inline constexpr Attributes named = {{"outlet", Word}, {"name", Word}};
inline constexpr Attributes sized = {{"stretch", Size}, {"width", Size}};
// What a screen reader calls an element that has no title or label beside it. `describedBy` names the label
// that says more.
inline constexpr Attributes spoken = {{"spoken", Text}};
inline constexpr Attributes control = Attributes{{"action", Word}, {"enabled", YesNo}, {"toolTip", Text}} +
                                      spoken + Attributes{{"describedBy", Reference}};
inline constexpr Attributes field = {
    {"text", Text}, {"placeholder", Text}, {"delegate", YesNo}, {"maxWidth", Size}};
inline constexpr Attributes window = {
    {"title", Text}, {"width", Size}, {"height", Size}, {"delegate", YesNo}};
// The question that the window asks before the action; "%@" in it stands for the text of the field `about`.
inline constexpr Attributes asked = {{"confirm", Text}, {"about", Reference}};
inline constexpr Attributes indent = {{"indent", Size}};
inline constexpr Attributes common = named + sized + control; // of the controls in a layout

consteval auto windowRules() {
    using enum InterfaceKind;
    using enum Place;
    return std::to_array<ElementRule>({
        {Interface,
         Named,
         "interface",
         nullptr,
         {{"class", Word, "", true}},
         {MenuBar, Window, Sheet, Panel}},
        {MenuBar, Named, "menuBar", nullptr, {}, {Menu}},
        {Menu, Named, "menu", nullptr, {{"title", Text, "", true}}, {MenuItem, MenuSeparator}},
        {MenuItem, Named, "item", makeMenuItem,
         named + control + asked +
             Attributes{{"title", Text, "", true},
                        {"key", Word},
                        {"edits", Reference}, // as for a button
                        {"role", Choice, "about|quit|guide"}}},
        {MenuSeparator, Named, "separator"},
        {Window, Named, "window", makeWindow, named + window, {Drawer}, Layout::One},
        {Sheet, Named, "sheet", makeWindow, named + window, {}, Layout::One},
        {Panel, Named, "panel", makeWindow, named + window, {}, Layout::One},
        {Drawer, Named, "drawer", makeDrawer, named + Attributes{{"width", Size}} + spoken, {}, Layout::One},
    });
}

consteval auto layoutRules() {
    using enum InterfaceKind;
    using enum Place;
    return std::to_array<ElementRule>({
        {Column, InLayout, "column", nullptr, sized, {}, Layout::Any},
        // A drawer's content scrolls, except for a row at its `foot`.
        {Row, InLayout, "row", nullptr, sized + Attributes{{"foot", YesNo}}, {}, Layout::Any},
        {Grid, InLayout, "grid", nullptr, sized + Attributes{{"columns", Size, "", true}}, {}, Layout::Any},
        {Box, InLayout, "box", nullptr, sized + Attributes{{"title", Text}}, {}, Layout::Any},
        {Spacer, InLayout, "spacer", nullptr, sized},
        {Separator, InLayout, "separator", nullptr, sized},
        {Label, InLayout, "label", makeLabel,
         named + sized +
             Attributes{{"text", Text},
                        {"toolTip", Text},
                        {"for", Reference},
                        {"about", Reference},
                        {"rowOf", Reference}, // the table whose selected row it names
                        {"style", Choice, "note|heading|warning"},
                        {"when", Word}} + // with which values of other controls it is shown
             indent},
        {TabView,
         InLayout,
         "tabView",
         makeTabView,
         named + sized + Attributes{{"tabs", Choice, "hidden"}, {"delegate", YesNo}},
         {Tab}},
        {Tab, Named, "tab", nullptr, {{"label", Text, "", true}}, {}, Layout::One},
    });
}

consteval auto controlRules() {
    using enum InterfaceKind;
    using enum Place;
    return std::to_array<ElementRule>({
        // In the window, text typed into the field counts as chosen in the panel that `chooses` opens. A
        // number lies between `least` and `most`; the value `unlimited` means no limit. The name in the field
        // is that of a row of the table `namesRow`; when it is not the selected row's, the window says
        // `another`.
        {TextField, InLayout, "textField", makeField,
         common + field +
             Attributes{{"chooses", Word},
                        {"least", Integer},
                        {"most", Word},
                        {"unlimited", Integer},
                        {"mayBeEmpty", YesNo},
                        {"folder", YesNo},
                        {"namesRow", Reference},
                        {"records", Word},
                        {"another", Text}}},
        {SecureField, InLayout, "secureField", makeField, common + field},
        {Button, InLayout, "button", makeButton,
         common + asked +
             Attributes{
                 {"title", Text},
                 {"image", YesNo},
                 {"reverts", Reference},
                 {"offWith", Reference},
                 // "new" and "edit" start the editor of the table `reverts` in the field `edits`; "new" also
                 // performs the operation `also`.
                 {"role", Choice, "cancel|new|edit|delete|refresh"},
                 {"edits", Reference},
                 {"checks", YesNo}, // checks the limits of the fields on its page
                 {"also", Word},
                 {"key", Choice, "return|escape"}}},
        {CheckBox, InLayout, "checkBox", makeButton,
         common + Attributes{{"title", Text}, {"state", Choice, "on|off"}, {"rowOf", Reference}} + indent},
        // The selected item stands for the number in the `column` of the selected row of the table `rowOf`.
        {PopUp,
         InLayout,
         "popUp",
         makePopUp,
         common + Attributes{{"typeAhead", YesNo}, {"rowOf", Reference}, {"column", Word}},
         {PopUpItem}},
        {PopUpItem,
         Named,
         "item",
         nullptr,
         {{"title", Text, "", true}, {"tag", Integer}, {"selected", YesNo}}},
        {Matrix,
         InLayout,
         "matrix",
         makeMatrix,
         common + Attributes{{"rows", Size, "", true}, {"columns", Size, "", true}} + indent,
         {Cell}},
        {Cell, Named, "cell", nullptr, {{"title", Text, "", true}}},
        {TableView,
         InLayout,
         "tableView",
         makeTable,
         common + Attributes{{"multiple", YesNo},
                             {"height", Size},
                             {"nameColumn", Word},
                             // What an empty table shows instead of rows: a text, and the button `begin`
                             // under another title.
                             {"empty", Text},
                             {"begin", Reference},
                             {"beginTitle", Text}},
         {TableColumn}},
        {TableColumn,
         Named,
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
        {TextView, InLayout, "textView", makeTextView, named + sized + Attributes{{"height", Size}} + spoken},
    });
}

consteval auto allRules() {
    constexpr auto windows = windowRules();
    constexpr auto layouts = layoutRules();
    constexpr auto controls = controlRules();
    std::array<ElementRule, windows.size() + layouts.size() + controls.size()> all{};
    auto* end = std::ranges::copy(windows, all.begin()).out;
    end = std::ranges::copy(layouts, end).out;
    std::ranges::copy(controls, end);
    return all;
}

} // namespace interfacetable

inline constexpr auto elementRules = interfacetable::allRules();

static_assert(
    [] {
        for (std::size_t index = 0; index < elementRules.size(); ++index) {
            if (static_cast<std::size_t>(elementRules.at(index).kind) != index) {
                return false;
            }
        }
        return true;
    }(),
    "the table describes the kinds of InterfaceKind in their order, without a gap");

/// The line for that kind in another layer's table, whose lines have a member `kind`; null when there is
/// none.
template <class Lines>
[[nodiscard]] constexpr const typename Lines::value_type* lineFor(InterfaceKind kind, const Lines& lines) {
    const auto found = std::ranges::find(lines, kind, &Lines::value_type::kind);
    return found == lines.end() ? nullptr : &*found;
}

/// Whether such a table has a line for each kind for which `needsLine` returns true.
template <class Lines>
[[nodiscard]] consteval bool hasLineForEach(const Lines& lines, bool (*needsLine)(const ElementRule& rule)) {
    return std::ranges::all_of(elementRules, [&](const ElementRule& rule) {
        // Not by lineFor: a build with sanitizers does not compare the address of a line with null here.
        return !needsLine(rule) || std::ranges::count(lines, rule.kind, &Lines::value_type::kind) > 0;
    });
}

} // namespace platform
