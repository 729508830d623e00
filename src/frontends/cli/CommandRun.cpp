#include "frontends/cli/CommandRun.h"

#include "frontends/cli/Interruption.h"
#include "frontends/script/PlanText.h"
#include "platform/appkit/NSApplication.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "review/DirectoryState.h"

#include <iostream>

namespace frontend {

namespace {

/// JSON is UTF-8: other bytes become U+FFFD.
std::string printed(const JSON& value) {
    constexpr int indent = 2;
    return value.dump(indent, ' ', false, JSON::error_handler_t::replace);
}

JSON errorObject(const std::string& text, CommandStatus status) {
    return {{"error", {{"status", static_cast<int>(status)}, {"text", text}}}};
}

/// Fails because a list does not have `name`, or because the list could not be read.
[[noreturn]] void failWithout(const std::string& name, const char* complaint) {
    CommandRun::requireDirectory();
    CommandRun::fail(stringWithFormat(NSLocalizedString(complaint), name));
}

} // namespace

void CommandRun::fail(const std::string& text, CommandStatus status) {
    throw CommandFailure(status, text);
}

int tellFailure(const CommandFailure& failure, bool asJSON) {
    if (asJSON) {
        std::cout << printed(errorObject(failure.what(), failure.status())) << '\n' << std::flush;
    } else {
        std::cerr << "brindle: " << failure.what() << '\n';
    }
    return static_cast<int>(failure.status());
}

int CommandRun::run() {
    const bool printsJSON = context_.options.printsJSON;
    bool hasFailed = false;
    try {
        context_.options.carryOut(*this);
        finish();
    } catch (const CommandFailure& failure) {
        hasFailed = true;
        status_ = failure.status();
        std::string text = Interruption::hasCome() ? NSLocalizedString("interrupted") : failure.what();
        if (const auto done = context_.history.takeAdded()) {
            text.erase(text.find_last_not_of('.') + 1);
            text = stringWithFormat(
                NSLocalizedString(
                    "%@; a part of it was carried out before: that is change %@ of the history, "
                    "which can be taken back (undo)"),
                text, std::to_string(done->number));
        }
        if (printsJSON) {
            result_ = errorObject(text, status_);
        } else {
            std::cerr << "brindle: " << text << '\n';
        }
    }
    if (const std::string lost = context_.history.takeLoss(); !lost.empty()) {
        std::cerr << "brindle: " << lost << '\n';
        if (!hasFailed) {
            result_["notInHistory"] = lost;
        }
    }
    if (printsJSON) {
        std::cout << (resultText_.empty() || hasFailed ? printed(result_) : resultText_) << '\n';
    } else if (!hasFailed) {
        for (const std::string& line : lines_) {
            std::cout << line << '\n';
        }
    }
    std::cout << std::flush;
    if (!std::cout) {
        std::cerr << "brindle: standard output cannot be written\n";
        return static_cast<int>(CommandStatus::Failed);
    }
    return static_cast<int>(status_);
}

void CommandRun::finish() {
    checkWhatHappened();
    if (context_.options.isDryRun || !hasWritten_) {
        return;
    }
    result_["changed"] = changes_;
    result_["runs"] = context_.presenter.runs();
    say(changes_ ? "changed" : "unchanged"); // for programs: not translated
}

void CommandRun::sayFields(const std::string& name) {
    for (const auto& [key, value] : result_[name].items()) {
        say(key + ": " + (value.is_string() ? value.get<std::string>() : value.dump()));
    }
}

std::string CommandRun::text(const std::string& field) const {
    return control<NSTextField>(field).stringValue();
}

std::string CommandRun::cell(const std::string& table, const std::string& column, int row) const {
    auto& view = control<NSTableView>(table);
    const NSTableColumn* found = view.tableColumnWithIdentifier(column);
    return found == nullptr ? std::string() : view.objectValue(*found, row);
}

int CommandRun::rowOf(const std::string& table, const std::string& column, const std::string& value) const {
    const int rows = control<NSTableView>(table).numberOfRows();
    for (int row = 0; row < rows; ++row) {
        if (cell(table, column, row) == value) {
            return row;
        }
    }
    return -1;
}

int CommandRun::requireRow(const std::string& table, const std::string& column, const std::string& value,
                           const char* complaint) const {
    const int row = rowOf(table, column, value);
    if (row < 0) {
        failWithout(value, complaint);
    }
    return row;
}

void CommandRun::requireDirectory() {
    if (const std::string notice = review::directoryNotice(); !notice.empty()) {
        fail(notice);
    }
}

void CommandRun::requireSMBConf() const {
    const SMBConf* conf = context_.reviewer->smbConf();
    if (conf != nullptr && !conf->unreadableReason().empty()) {
        fail(text("smbConfNotice"));
    }
}

void CommandRun::selectRows(const std::string& table, std::vector<int> rows) {
    perform([&] { control<NSTableView>(table).selectRows(std::move(rows)); });
}

void CommandRun::selectToRemove(const std::string& table, const std::string& column,
                                const std::string& name) {
    const int row = rowOf(table, column, name);
    if (row < 0) {
        requireDirectory();
        selectRows(table, {});
        return;
    }
    selectRows(table, {row});
    noteChange();
}

void CommandRun::type(const std::string& field, const std::string& text) {
    perform([&] { control<NSTextField>(field).performReplace(text); });
}

void CommandRun::select(const std::string& popUp, int index) {
    perform([&] { control<NSPopUpButton>(popUp).performSelect(index); });
}

void CommandRun::selectTitle(const std::string& popUp, const std::string& title, const char* complaint) {
    const int index = control<NSPopUpButton>(popUp).indexOfItemWithTitle(title);
    if (index < 0) {
        failWithout(title, complaint);
    }
    select(popUp, index);
}

void CommandRun::check(const std::string& box, bool isOn) {
    auto& button = control<NSButton>(box);
    if ((button.state() == NSOnState) != isOn) {
        perform([&] { button.performClick(); });
    }
}

void CommandRun::set(const std::string& field, const std::optional<std::string>& text) {
    if (text && this->text(field) != *text) {
        type(field, *text);
        noteChange();
    }
}

void CommandRun::setItem(const std::string& popUp, const std::optional<std::string>& title,
                         const char* complaint) {
    if (title && control<NSPopUpButton>(popUp).titleOfSelectedItem() != title) {
        selectTitle(popUp, *title, complaint);
        noteChange();
    }
}

void CommandRun::setIndex(const std::string& popUp, std::optional<int> index) {
    if (index && control<NSPopUpButton>(popUp).indexOfSelectedItem() != *index) {
        select(popUp, *index);
        noteChange();
    }
}

void CommandRun::setBox(const std::string& box, std::optional<bool> isOn) {
    if (isOn && (control<NSButton>(box).state() == NSOnState) != *isOn) {
        check(box, *isOn);
        noteChange();
    }
}

void CommandRun::press(NSControl& control) {
    hasWritten_ = true;
    if (!changes_) {
        return;
    }
    if (context_.options.isDryRun) {
        showPlan(context_.reviewer->planPress(control));
        return;
    }
    perform([&] {
        if (auto* button = dynamic_cast<NSButton*>(&control)) {
            button->performClick();
        } else {
            control.sendAction();
        }
    });
}

void CommandRun::send(const std::string& operation) {
    press(*context_.presenter.interface().findWiredTo(operation));
}

void CommandRun::write(const review::PlannedRun& run, const std::function<void()>& change) {
    hasWritten_ = true;
    noteChange();
    if (context_.options.isDryRun) {
        sayPlanned(runLine(run));
    } else {
        perform(change);
    }
}

void CommandRun::perform(const std::function<void()>& event) {
    NSApp().dispatch(event);
    checkWhatHappened();
}

void CommandRun::checkWhatHappened() const {
    const CommandPresenter& presenter = context_.presenter;
    if (Interruption::hasCome()) {
        fail(NSLocalizedString("interrupted"));
    }
    if (presenter.unanswered()) {
        fail(*presenter.unanswered() + " " + NSLocalizedString("(use --yes to continue)"),
             CommandStatus::NeedsAnswer);
    }
    if (presenter.wasRefused()) {
        fail(presenter.faults().empty()
                 ? NSLocalizedString("an administrator's permission is needed, and was not given")
                 : presenter.faults().front(),
             CommandStatus::AdministratorRefused);
    }
    if (presenter.wasDeclined()) {
        fail(NSLocalizedString("not confirmed: it was not carried out"));
    }
    if (!presenter.faults().empty()) {
        fail(presenter.faults().front());
    }
    if (presenter.hasBeeped()) {
        fail(NSLocalizedString("it was not carried out; the system's log says why"));
    }
}

void CommandRun::showPlan(const review::Plan& plan) {
    if (!plan.failure.empty()) {
        fail(plan.failure);
    }
    for (const std::string& line : planLines(plan)) {
        sayPlanned(line);
    }
}

void CommandRun::sayPlanned(const std::string& line) {
    say(line);
    JSON& lines = result_["plan"];
    lines = lines.is_array() ? lines : JSON::array();
    lines.push_back(line);
}

} // namespace frontend
