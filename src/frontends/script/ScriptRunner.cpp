#include "frontends/script/ScriptRunner.h"

#include "frontends/script/ScriptWords.h"
#include "platform/appkit/NSApplication.h"

#include <algorithm>
#include <array>
#include <istream>
#include <limits>
#include <ostream>
#include <string_view>

namespace frontend {

namespace {

/// Some editors put it at the start of a UTF-8 file.
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

} // namespace

ScriptRunner::ScriptRunner(std::string name, std::istream& input, std::shared_ptr<ScriptOutput> output,
                           std::shared_ptr<ScriptPresenter> presenter,
                           std::function<platform::Status()> launch, std::ostream& errors)
    : name_(std::move(name)), input_(input), output_(std::move(output)), presenter_(std::move(presenter)),
      launch_(std::move(launch)), errors_(errors) {}

int ScriptRunner::run() {
    try {
        for (std::string line; std::getline(input_, line);) {
            ++line_;
            if (line_ == 1 && line.starts_with(byteOrderMark)) {
                line.erase(0, byteOrderMark.size());
            }
            carryOut(line);
        }
        if (input_.bad()) {
            ++line_;
            fail("the script cannot be read further");
        }
        finish();
        return 0;
    } catch (const ScriptError& error) {
        errors_ << name_ << ':' << error.line() << ": " << error.what() << '\n' << std::flush;
    }
    // The application still shuts down properly, so that administrator rights are given up, but without
    // output.
    output_->silence();
    NSApp().dispatch([] { NSApp().terminate(); });
    return 1;
}

void ScriptRunner::carryOut(const std::string& line) {
    Words words;
    try {
        words = splitScriptLine(line);
    } catch (const ScriptSyntaxError& error) {
        fail(error.what());
    }
    if (words.empty()) {
        return;
    }
    const std::string name = std::move(words.front());
    words.erase(words.begin());
    const Command* command = findCommand(name);
    if (command == nullptr) {
        fail("there is no command " + quotedText(name));
    }
    if (words.size() < command->least || words.size() > command->most) {
        fail("write this command as: " + name + (command->usage.empty() ? "" : " ") +
             std::string(command->usage));
    }
    checkTime(*command);
    (this->*command->run)(words);
    if (output_->hasFailed()) {
        fail("standard output cannot be written");
    }
}

const ScriptRunner::Command* ScriptRunner::findCommand(const std::string& name) {
    static constexpr std::size_t any = std::numeric_limits<std::size_t>::max();
    static const std::array commands = {
        Command{"start", "", 0, 0, false, &ScriptRunner::start},
        Command{"answer", "[ALERT] BUTTON", 1, 2, true, &ScriptRunner::answer},
        Command{"choose", "PATH", 1, 1, true, &ScriptRunner::choose},
        Command{"administrator", "allow|refuse", 1, 1, true, &ScriptRunner::administrator},
        Command{"type", "OUTLET TEXT", 2, 2, false, &ScriptRunner::type},
        Command{"append", "OUTLET TEXT", 2, 2, false, &ScriptRunner::append},
        Command{"select", "OUTLET INDEX|TITLE", 2, 2, false, &ScriptRunner::select},
        Command{"page", "OUTLET INDEX", 2, 2, false, &ScriptRunner::page},
        Command{"rows", "OUTLET [ROW...]", 1, any, false, &ScriptRunner::rows},
        Command{"check", "OUTLET [ROW COLUMN] on|off", 2, 4, false, &ScriptRunner::check},
        Command{"press", "OUTLET", 1, 1, false, &ScriptRunner::press},
        Command{"send", "OPERATION", 1, 1, false, &ScriptRunner::send},
        Command{"show", "OUTLET...", 1, any, false, &ScriptRunner::show},
        Command{"items", "OUTLET", 1, 1, false, &ScriptRunner::items},
        Command{"plan", "press OUTLET|send OPERATION", 2, 2, false, &ScriptRunner::plan},
        Command{"review", "on|off", 1, 1, false, &ScriptRunner::review},
        Command{"reread", "", 0, 0, false, &ScriptRunner::reread},
        Command{"history", "", 0, 0, false, &ScriptRunner::history},
        Command{"undo", "[NUMBER]", 0, 1, false, &ScriptRunner::undo},
        Command{"close", "WINDOW", 1, 1, false, &ScriptRunner::close},
        Command{"quit", "", 0, 0, false, &ScriptRunner::quit},
    };
    for (const Command& command : commands) {
        if (command.name == name) {
            return &command;
        }
    }
    return nullptr;
}

void ScriptRunner::checkTime(const Command& command) const {
    const bool changesNothing = command.preparesOnly || command.run == &ScriptRunner::quit;
    if (started_ && NSApp().isTerminated() && !changesNothing) {
        fail("the application has ended: nothing can follow");
    }
    const bool isStart = command.run == &ScriptRunner::start;
    if (isStart && started_) {
        fail("the application has been started already");
    }
    static const std::array reachPastSheets = {&ScriptRunner::review, &ScriptRunner::reread,
                                               &ScriptRunner::history, &ScriptRunner::undo};
    if (started_ && std::ranges::find(reachPastSheets, command.run) != reachPastSheets.end() &&
        NSApp().attachedSheet() != nullptr) {
        fail("a sheet is up: " + std::string(command.name) + " must wait until it has gone");
    }
    if (!started_ && !isStart && !command.preparesOnly) {
        fail("start must come before " + std::string(command.name));
    }
}

void ScriptRunner::finish() {
    ++line_;
    if (started_ && !NSApp().isTerminated()) {
        quit({});
    }
    if (output_->hasFailed()) {
        fail("standard output cannot be written");
    }
    for (const ScriptError& left : presenter_->unused()) {
        errors_ << name_ << ':' << left.line() << ": " << left.what() << '\n';
    }
    errors_ << std::flush;
}

void ScriptRunner::start(const Words& /*words*/) {
    started_ = true;
    if (const auto launched = launch_(); !launched.isOk()) {
        fail(launched.text());
    }
    if (const auto& fault = presenter_->fault()) {
        throw ScriptError(*fault);
    }
}

void ScriptRunner::answer(const Words& words) {
    if (words.size() == 1) {
        presenter_->addAnswer(line_, std::nullopt, words[0]);
    } else {
        presenter_->addAnswer(line_, words[0], words[1]);
    }
}

void ScriptRunner::choose(const Words& words) {
    if (!words[0].starts_with('/')) {
        fail("an open panel chooses an absolute path, and " + quotedText(words[0]) +
             " does not begin with /");
    }
    presenter_->addChoice(line_, words[0]);
}

void ScriptRunner::administrator(const Words& words) {
    if (words[0] != "allow" && words[0] != "refuse") {
        fail("an administrator dialog is answered with allow or refuse, not " + quotedText(words[0]));
    }
    presenter_->setAdministratorAllows(words[0] == "allow");
}

void ScriptRunner::fail(const std::string& text) const {
    throw ScriptError(line_, text);
}

void ScriptRunner::perform(const std::function<void()>& event) {
    NSApp().dispatch(event);
    if (const auto& fault = presenter_->fault()) {
        throw ScriptError(*fault);
    }
}

} // namespace frontend
