#include "frontends/cli/CommandPresenter.h"

#include "frontends/cli/Interruption.h"
#include "frontends/cli/Terminal.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/SystemPaths.h"

#include <utility>

namespace frontend {

bool CommandPresenter::isConfirmed(const platform::Alert& alert) {
    const std::string question = alert.title + ": " + alert.message;
    if (saysYes_) {
        return true;
    }
    if (isAtTerminal()) {
        const bool isConfirmed = askYesOrNo(question);
        wasDeclined_ = wasDeclined_ || !isConfirmed;
        return isConfirmed;
    }
    unanswered_ = unanswered_.value_or(question);
    return false;
}

platform::AlertAnswer CommandPresenter::runAlert(const platform::Alert& alert) {
    if (!hasBegun_) {
        return platform::SilentPresenter::runAlert(alert);
    }
    if (!alert.alternateButton) {
        faults_.push_back(alert.title + ": " + alert.message);
        return platform::AlertAnswer::Default;
    }
    // The button that goes on is the one that is not the default, unless the default itself is "Yes".
    const bool defaultGoesOn = alert.defaultButton == NSLocalizedString("Yes");
    return isConfirmed(alert) == defaultGoesOn ? platform::AlertAnswer::Default
                                               : platform::AlertAnswer::Alternate;
}

std::optional<std::string> CommandPresenter::runOpenPanel(const platform::OpenPanelRequest& /*request*/) {
    return std::exchange(choice_, std::nullopt);
}

std::optional<platform::AdministratorAnswer>
CommandPresenter::runAdministratorDialog(const platform::AdministratorRequest& request) {
    if (!request.needsPassword) {
        return platform::AdministratorAnswer{}; // giving the command is consent
    }
    // Count the right as refused until a tool runs: sudo may reject every password.
    wasRefused_ = hasBegun_;
    if (hasBegun_ && isAtTerminal()) {
        if (!request.message.empty()) {
            tell(request.message);
        }
        if (auto password = askSecret(NSLocalizedString("Administrator password"))) {
            return platform::AdministratorAnswer{std::move(*password)};
        }
    }
    return std::nullopt;
}

void CommandPresenter::editWasRefused(const NSTextField& /*field*/, const std::string& errorText) {
    faults_.push_back(errorText);
}

void CommandPresenter::beep() {
    if (!outcome_.explainsBeep()) {
        hasBeeped_ = hasBegun_;
    }
}

void CommandPresenter::toolWillRun(const std::string& tool, std::span<const std::string> arguments) {
    if (Interruption::hasCome() && history_ != nullptr) {
        history_->stopAction(false);
    }
    wasRefused_ = false;
    outcome_.begin(tool, arguments);
    isTelling_ = tool == platform::systempath::smbstatus;
    runs_ += isTelling_ ? 0 : 1; // that one only writes what it was asked for, and changes nothing
}

void CommandPresenter::toolDidWrite(std::string_view output) {
    if (!isTelling_ && outcome_.hasFailed(output)) {
        faults_.emplace_back(output.substr(0, output.find_last_not_of('\n') + 1));
    }
}

void CommandPresenter::interfaceDidLoad(platform::Interface& interface) {
    // The main interface is the first one loaded: a command opens no other window.
    interface_ = interface_ == nullptr ? &interface : interface_;
}

} // namespace frontend
