#include "frontends/script/ScriptRunner.h"

#include "frontends/script/ControlState.h"
#include "frontends/script/ScriptWords.h"
#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSMatrix.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTabView.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSWindow.h"
#include "platform/foundation/NSString.h"

#include <algorithm>

// The commands that use controls as a user does with mouse and keys.

namespace frontend {

namespace {

bool isNumber(const std::string& word) {
    return !word.empty() && word.find_first_not_of("0123456789") == std::string::npos;
}

} // namespace

const platform::InterfaceNode& ScriptRunner::node(const std::string& name) const {
    const platform::InterfaceNode* found = presenter_->find(name);
    if (found == nullptr) {
        fail("there is no control or window " + quotedText(name));
    }
    return *found;
}

void ScriptRunner::requireUsable(const platform::Element& element, const std::string& name) const {
    const NSWindow* window = presenter_->windowOf(element);
    const NSWindow* sheet = NSApp().attachedSheet();
    if (sheet != nullptr && window != sheet) {
        fail(name + " cannot be used while the sheet " + sheet->name() + " is up");
    }
    if (window != nullptr && !window->isVisible()) {
        fail(window == &element
                 ? name + " is not on screen"
                 : name + " cannot be used: its window " + window->name() + " is not on screen");
    }
    if (const auto* control = dynamic_cast<const NSControl*>(&element);
        control != nullptr && !control->isEnabled()) {
        fail(name + " is disabled");
    }
}

template <class Kind>
Kind& ScriptRunner::usable(const std::string& name, const char* what) const {
    platform::Element& found = *node(name).element;
    auto* kind = dynamic_cast<Kind*>(&found);
    if (kind == nullptr) {
        fail(name + " is not a " + what);
    }
    requireUsable(found, name);
    return *kind;
}

NSTextField& ScriptRunner::editableField(const std::string& name) const {
    auto& field = usable<NSTextField>(name, "text field");
    if (!field.isEditable()) {
        fail(name + " only shows its text: nothing can be typed into it");
    }
    return field;
}

int ScriptRunner::number(const std::string& word) const {
    if (!isNumber(word)) {
        fail(quotedText(word) + " is not a number that counts from 0");
    }
    return intValue(word); // a number beyond its bounds is beyond every control's too
}

int ScriptRunner::state(const std::string& word) const {
    if (word != "on" && word != "off") {
        fail("a box is checked on or off, not " + quotedText(word));
    }
    return word == "on" ? NSOnState : NSOffState;
}

void ScriptRunner::type(const Words& words) {
    NSTextField& field = editableField(words[0]);
    perform([&] { field.performReplace(words[1]); });
}

void ScriptRunner::append(const Words& words) {
    NSTextField& field = editableField(words[0]);
    perform([&] {
        const std::string& text = field.stringValue();
        const std::string proposed = text + words[1];
        static_cast<void>(field.proposeEdit(proposed, utf16Length(proposed), {utf16Length(text), 0}));
        field.endEditing();
    });
}

void ScriptRunner::select(const Words& words) {
    auto& popUp = usable<NSPopUpButton>(words[0], "pop-up menu");
    const int index = isNumber(words[1]) ? number(words[1]) : popUp.indexOfItemWithTitle(words[1]);
    if (index < 0 || index >= popUp.numberOfItems()) {
        fail(words[0] + " has no item " + quotedText(words[1]));
    }
    perform([&] { popUp.performSelect(index); });
}

void ScriptRunner::page(const Words& words) {
    auto& tabView = usable<NSTabView>(words[0], "tab view");
    const int index = number(words[1]);
    if (index >= tabView.numberOfTabViewItems()) {
        fail(words[0] + " has no page " + words[1]);
    }
    perform([&] { tabView.selectTabViewItemAtIndex(index); });
}

void ScriptRunner::rows(const Words& words) {
    auto& table = usable<NSTableView>(words[0], "table");
    std::vector<int> selection;
    for (auto word = words.begin() + 1; word != words.end(); ++word) {
        selection.push_back(number(*word));
        if (selection.back() >= table.numberOfRows()) {
            fail(words[0] + " has no row " + *word);
        }
    }
    std::sort(selection.begin(), selection.end());
    selection.erase(std::unique(selection.begin(), selection.end()), selection.end());
    if (selection.size() > 1 && !table.allowsMultipleSelection()) {
        fail(words[0] + " lets only one row be selected");
    }
    perform([&] { table.selectRows(selection); });
}

void ScriptRunner::check(const Words& words) {
    if (words.size() != 2) {
        checkCell(words);
        return;
    }
    auto& box = usable<NSButton>(words[0], "check box");
    if (box.kind() != NSButtonKind::CheckBox) {
        fail(words[0] + " is not a check box");
    }
    if (box.state() != state(words[1])) {
        perform([&] { box.performClick(); });
    }
}

void ScriptRunner::checkCell(const Words& words) {
    auto& matrix = usable<NSMatrix>(words[0], "matrix");
    if (words.size() != 4) {
        fail("write this command as: check OUTLET ROW COLUMN on|off");
    }
    const int row = number(words[1]);
    const int column = number(words[2]);
    if (row >= matrix.numberOfRows() || column >= matrix.numberOfColumns()) {
        fail(words[0] + " has no cell in row " + words[1] + " and column " + words[2]);
    }
    if (matrix.stateAt(row, column) != state(words[3])) {
        perform([&] { matrix.performClickAt(row, column); });
    }
}

NSButton& ScriptRunner::pushButton(const std::string& name) const {
    auto& button = usable<NSButton>(name, "button");
    if (button.kind() != NSButtonKind::Push) {
        fail(name + " is a check box: write check " + name + " on|off");
    }
    return button;
}

void ScriptRunner::press(const Words& words) {
    NSButton& button = pushButton(words[0]);
    perform([&] { button.performClick(); });
}

NSControl& ScriptRunner::usableSender(const std::string& operation) const {
    NSControl* sender = presenter_->findWiredTo(operation);
    if (sender == nullptr) {
        fail("no control or menu item sends " + quotedText(operation));
    }
    requireUsable(*sender, sender->name().empty() ? operation : sender->name());
    return *sender;
}

void ScriptRunner::send(const Words& words) {
    NSControl& sender = usableSender(words[0]);
    perform([&] { sender.sendAction(); });
}

void ScriptRunner::show(const Words& words) {
    std::vector<const platform::InterfaceNode*> shown;
    for (const std::string& name : words) {
        shown.push_back(&node(name));
    }
    for (const platform::InterfaceNode* each : shown) {
        output_->line(describeState(*each));
    }
}

void ScriptRunner::items(const Words& words) {
    const auto* popUp = dynamic_cast<const NSPopUpButton*>(node(words[0]).element.get());
    if (popUp == nullptr) {
        fail(words[0] + " is not a pop-up menu");
    }
    if (popUp->numberOfItems() > 0) {
        output_->line(describeItems(*popUp));
    }
}

void ScriptRunner::close(const Words& words) {
    auto& window = usable<NSWindow>(words[0], "window");
    if (window.kind() == NSWindowKind::Sheet) {
        fail(words[0] + " is a sheet: only its own buttons end it");
    }
    perform([&] { window.close(); });
}

void ScriptRunner::quit(const Words& /*words*/) {
    if (NSApp().isTerminated()) {
        return;
    }
    perform([] {
        if (NSWindow* window = NSApp().mainWindow()) {
            window->close();
        }
        NSApp().terminate(); // closing the main window need not end the application, and there may be none
    });
}

} // namespace frontend
