#include "frontends/script/ScriptPresenter.h"

#include "frontends/script/ScriptWords.h"
#include "platform/appkit/NSWindow.h"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace frontend {

namespace {

using Button = std::pair<platform::AlertAnswer, std::string>;

/// The buttons of an alert, in the order in which the output lists them.
std::vector<Button> buttonsOf(const platform::Alert& alert) {
    std::vector<Button> buttons = {{platform::AlertAnswer::Default, alert.defaultButton}};
    if (alert.alternateButton) {
        buttons.emplace_back(platform::AlertAnswer::Alternate, *alert.alternateButton);
    }
    if (alert.otherButton) {
        buttons.emplace_back(platform::AlertAnswer::Other, *alert.otherButton);
    }
    return buttons;
}

std::string quotedTitles(const std::vector<Button>& buttons) {
    std::string text;
    for (const Button& button : buttons) {
        text += ' ' + quotedText(button.second);
    }
    return text;
}

/// Returns why a panel cannot be confirmed with `path`; empty when it can.
std::string whyNotChosen(const platform::OpenPanelRequest& request, const std::string& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) {
        return "there is nothing at " + path + " for the open panel to choose";
    }
    const bool isFolder = std::filesystem::is_directory(status);
    if (isFolder ? request.canChooseDirectories : request.canChooseFiles) {
        return "";
    }
    return isFolder ? path + " is a folder and the open panel offers files"
                    : path + " is a file and the open panel offers folders";
}

} // namespace

void ScriptPresenter::addAnswer(int line, std::optional<std::string> alert, std::string button) {
    answers_.push_back({line, std::move(alert), std::move(button)});
}

void ScriptPresenter::addChoice(int line, std::string path) {
    choices_.push_back({line, std::move(path)});
}

std::vector<ScriptError> ScriptPresenter::unused() const {
    std::vector<ScriptError> errors;
    for (const Answer& answer : answers_) {
        errors.emplace_back(answer.line, answer.alert
                                             ? "no alert " + quotedText(*answer.alert) +
                                                   " came for the answer " + quotedText(answer.button)
                                             : "no alert came for the answer " + quotedText(answer.button));
    }
    for (const Choice& choice : choices_) {
        errors.emplace_back(choice.line, "no open panel came for " + choice.path);
    }
    std::stable_sort(errors.begin(), errors.end(), [](const ScriptError& left, const ScriptError& right) {
        return left.line() < right.line();
    });
    return errors;
}

const platform::InterfaceNode* ScriptPresenter::find(const std::string& name) const {
    for (const platform::Interface* interface : interfaces_) {
        if (const platform::InterfaceNode* node = interface->findNode(name)) {
            return node;
        }
    }
    return nullptr;
}

NSControl* ScriptPresenter::findWiredTo(const std::string& operation) const {
    for (const platform::Interface* interface : interfaces_) {
        if (NSControl* control = interface->findWiredTo(operation)) {
            return control;
        }
    }
    return nullptr;
}

NSWindow* ScriptPresenter::windowOf(const platform::Element& element) const {
    const auto found = windows_.find(&element);
    return found == windows_.end() ? nullptr : found->second;
}

std::optional<ScriptPresenter::Answer> ScriptPresenter::takeAnswer(const std::string& title) {
    auto found = std::find_if(answers_.begin(), answers_.end(),
                              [&](const Answer& answer) { return answer.alert == title; });
    if (found == answers_.end()) {
        found = std::find_if(answers_.begin(), answers_.end(),
                             [](const Answer& answer) { return !answer.alert; });
    }
    if (found == answers_.end()) {
        return std::nullopt;
    }
    Answer answer = std::move(*found);
    answers_.erase(found);
    return answer;
}

void ScriptPresenter::fail(ScriptError error) {
    fault_ = error;
    output_->silence();
    throw error;
}

platform::AlertAnswer ScriptPresenter::runAlert(const platform::Alert& alert) {
    const std::vector<Button> buttons = buttonsOf(alert);
    auto pressed = buttons.begin();
    if (const auto answer = takeAnswer(alert.title)) {
        pressed = std::find_if(buttons.begin(), buttons.end(),
                               [&](const Button& button) { return button.second == answer->button; });
        if (pressed == buttons.end()) {
            fail({answer->line, "the alert " + quotedText(alert.title) + " has no button " +
                                    quotedText(answer->button) + "; it has" + quotedTitles(buttons)});
        }
    } else if (review::Reviewer::isMigrationQuestion(alert)) {
        pressed = std::find_if(buttons.begin(), buttons.end(), [](const Button& button) {
            return button.first == platform::AlertAnswer::Alternate;
        });
    }
    output_->line("alert " + quotedText(alert.title) + ' ' + quotedText(alert.message) +
                  quotedTitles(buttons) + " -> " + quotedText(pressed->second));
    const bool migrates =
        pressed->first == platform::AlertAnswer::Default && review::Reviewer::isMigrationQuestion(alert);
    return migrates && !mayMigrate() ? platform::AlertAnswer::Alternate : pressed->first;
}

bool ScriptPresenter::mayMigrate() const {
    const review::Reviewer* reviewer = findReviewer_ ? findReviewer_() : nullptr;
    return reviewer == nullptr || reviewer->mayMigrate();
}

std::optional<std::string> ScriptPresenter::runOpenPanel(const platform::OpenPanelRequest& request) {
    const std::string shown = request.canChooseFiles ? "panel files -> " : "panel folders -> ";
    if (choices_.empty()) {
        output_->line(shown + "cancel");
        return std::nullopt;
    }
    const Choice choice = std::move(choices_.front());
    choices_.pop_front();
    if (const std::string reason = whyNotChosen(request, choice.path); !reason.empty()) {
        fail({choice.line, reason});
    }
    output_->line(shown + scriptWord(choice.path));
    return choice.path;
}

std::optional<platform::AdministratorAnswer>
ScriptPresenter::runAdministratorDialog(const platform::AdministratorRequest& request) {
    // A script has no password, so it cannot allow what needs one.
    const bool allows = administratorAllows_ && !request.needsPassword;
    output_->line(allows ? "administrator -> allow" : "administrator -> refuse");
    return allows ? std::optional(platform::AdministratorAnswer{}) : std::nullopt;
}

void ScriptPresenter::beep() {
    output_->line("beep");
}

void ScriptPresenter::openAddress(const std::string& address) {
    output_->line("open " + quotedText(address));
}

platform::TimerId ScriptPresenter::startTimer(double /*interval*/, std::function<void()> /*fire*/) {
    return ++lastTimer_;
}

void ScriptPresenter::stopTimer(platform::TimerId /*timer*/) {}

void ScriptPresenter::interfaceDidLoad(platform::Interface& interface) {
    interfaces_.push_back(&interface);
    noteWindows(interface.root(), nullptr);
}

void ScriptPresenter::noteWindows(const platform::InterfaceNode& node, NSWindow* window) {
    if (auto* own = dynamic_cast<NSWindow*>(node.element.get())) {
        window = own;
    }
    if (node.element && window != nullptr) {
        windows_[node.element.get()] = window;
    }
    for (const auto& child : node.children) {
        noteWindows(*child, window);
    }
}

void ScriptPresenter::windowVisibilityDidChange(NSWindow& window) {
    if (window.kind() != NSWindowKind::Main) {
        output_->line("window " + scriptWord(window.name()) + (window.isVisible() ? " shown" : " hidden"));
    }
}

void ScriptPresenter::editWasRefused(const NSTextField& /*field*/, const std::string& errorText) {
    output_->line("refused " + quotedText(errorText));
}

void ScriptPresenter::applicationDidTerminate() {
    output_->line("quit");
}

void ScriptPresenter::toolWillRun(const std::string& tool, std::span<const std::string> arguments) {
    output_->line("run " + scriptWords(tool, arguments));
}

void ScriptPresenter::toolDidWrite(std::string_view output) {
    output_->line("output " + quotedText(output));
}

} // namespace frontend
