#include "review/PlanHost.h"

#include "platform/foundation/NSBundle.h"

namespace review {

std::unique_ptr<platform::AuthorizationSession> PlanAuthority::createSession(OSStatus* status) {
    *status = errAuthorizationSuccess;
    return std::make_unique<platform::AuthorizationSession>();
}

OSStatus PlanAuthority::copyRights(platform::AuthorizationSession& /*session*/,
                                   const AuthorizationRights& /*rights*/, AuthorizationFlags /*flags*/) {
    return errAuthorizationSuccess;
}

void PlanAuthority::destroyRights(platform::AuthorizationSession& /*session*/) {}

OSStatus PlanAuthority::execute(platform::AuthorizationSession& /*session*/, const std::string& tool,
                                std::span<const std::string> arguments, std::string* output) {
    return copy_->execute(tool, arguments, output);
}

platform::AlertAnswer PlanPresenter::runAlert(const platform::Alert& alert) {
    const std::string yes = NSLocalizedString("Yes");
    auto answer = platform::AlertAnswer::Default;
    std::string button = alert.defaultButton;
    if (alert.alternateButton == yes) {
        answer = platform::AlertAnswer::Alternate;
        button = yes;
    } else if (alert.otherButton == yes) {
        answer = platform::AlertAnswer::Other;
        button = yes;
    }
    plan_.asks.push_back({alert.title, alert.message, button,
                          alert.alternateButton.has_value() || alert.otherButton.has_value()});
    return answer;
}

std::optional<platform::AdministratorAnswer>
PlanPresenter::runAdministratorDialog(const platform::AdministratorRequest& /*request*/) {
    return platform::AdministratorAnswer{};
}

void PlanPresenter::toolWillRun(const std::string& tool, std::span<const std::string> arguments) {
    plan_.runs.push_back({tool, {arguments.begin(), arguments.end()}, ""});
}

void PlanPresenter::toolDidWrite(std::string_view output) {
    plan_.runs.back().output = output;
}

} // namespace review
