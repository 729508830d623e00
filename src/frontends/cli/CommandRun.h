#pragma once

#include "access/Doctor.h"
#include "frontends/cli/CommandFailure.h"
#include "frontends/cli/CommandOptions.h"
#include "frontends/cli/CommandPresenter.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "review/History.h"
#include "review/Reviewer.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace frontend {

using JSON = nlohmann::ordered_json;

/// What a command works with.
struct CommandContext {
    const CommandOptions& options;
    CommandPresenter& presenter;
    review::Reviewer* reviewer = nullptr; ///< null when the application is not loaded
    const review::History& history;
    accesscheck::ExaminedHost host;
};

/// A command that is being carried out: it uses the application's controls as a user would, and collects the
/// output. The first step that cannot be done ends it with a CommandFailure.
class CommandRun {
  public:
    explicit CommandRun(CommandContext context) : context_(std::move(context)) {}

    /// Carries the command out and prints its output, or why it failed. Returns the exit status.
    [[nodiscard]] int run();

    // The controls.
    template <class Kind>
    [[nodiscard]] Kind& control(const std::string& name) const {
        return dynamic_cast<Kind&>(*context_.presenter.interface().find(name));
    }

    [[nodiscard]] std::string text(const std::string& field) const;
    [[nodiscard]] std::string cell(const std::string& table, const std::string& column, int row) const;
    /// Returns the first row whose column holds `value`; -1 when there is none.
    [[nodiscard]] int rowOf(const std::string& table, const std::string& column,
                            const std::string& value) const;
    /// The same, but when there is none, ends the command with the complaint, which names the value.
    [[nodiscard]] int requireRow(const std::string& table, const std::string& column,
                                 const std::string& value, const char* complaint) const;
    /// Ends the command when the directory could not be read: a name that is missing then means nothing.
    static void requireDirectory();
    /// The same for smb.conf. Its shares and settings would seem to be none, or Brindle's own.
    void requireSMBConf() const;
    void selectRows(const std::string& table, std::vector<int> rows);
    /// Selects the row whose column holds `name`, and notes the change; selects none when there is none.
    void selectToRemove(const std::string& table, const std::string& column, const std::string& name);
    void type(const std::string& field, const std::string& text);
    void select(const std::string& popUp, int index);
    /// Ends the command with `complaint`, a format that takes the title, when there is no such item.
    void selectTitle(const std::string& popUp, const std::string& title, const char* complaint);
    void check(const std::string& box, bool isOn);

    // These set a control only when its value differs, and then note that something changes.
    void set(const std::string& field, const std::optional<std::string>& text);
    void setItem(const std::string& popUp, const std::optional<std::string>& title, const char* complaint);
    void setIndex(const std::string& popUp, std::optional<int> index);
    void setBox(const std::string& box, std::optional<bool> isOn);

    void noteChange() { changes_ = true; }

    /// True when anything is to change.
    [[nodiscard]] bool changes() const { return changes_; }

    /// Uses the control, or prints the plan in a dry run.
    void press(NSControl& control);

    void press(const std::string& button) { press(control<NSControl>(button)); }

    /// The same for the control that is wired to the operation.
    void send(const std::string& operation);
    /// Carries out a change that has no control and is one tool run; in a dry run prints that instead.
    void write(const review::PlannedRun& run, const std::function<void()>& change);
    void showPlan(const review::Plan& plan);

    /// Ends a command that has nothing to change.
    void finishUnchanged() { hasWritten_ = true; }

    /// Runs a user's action as one event; a failure in it ends the command.
    void perform(const std::function<void()>& event);

    [[nodiscard]] CommandPresenter& presenter() const { return context_.presenter; }

    [[nodiscard]] const CommandContext& context() const { return context_; }

    // The command's output.
    [[nodiscard]] JSON& result() { return result_; }

    /// Sets the JSON to print in place of result(), for a command that writes it itself.
    void setResultText(std::string text) { resultText_ = std::move(text); }

    void say(const std::string& line) { lines_.push_back(line); }

    /// Prints the fields of the object with that name in the result, one line each.
    void sayFields(const std::string& name);

    /// Sets the exit status of a command that was carried out.
    void endWith(CommandStatus status) { status_ = status; }

    [[noreturn]] static void fail(const std::string& text, CommandStatus status = CommandStatus::Failed);

  private:
    void checkWhatHappened() const;
    void sayPlanned(const std::string& line);
    void finish();

    CommandContext context_;
    bool changes_ = false;
    bool hasWritten_ = false;
    CommandStatus status_ = CommandStatus::Done;
    JSON result_ = JSON::object();
    std::string resultText_;
    std::vector<std::string> lines_;
};

} // namespace frontend
