#include "platform/security/SudoAuthority.h"

#include "platform/appkit/Presenter.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSLog.h"
#include "platform/posix/Process.h"
#include "platform/posix/Secret.h"

#include <string_view>
#include <utility>
#include <vector>

#include <unistd.h>

namespace platform {

namespace {

bool isProgram(const std::string& path) {
    return ::access(path.c_str(), X_OK) == 0;
}

bool succeeds(std::vector<std::string> command, std::string_view input = {}) {
    const auto finished = runProcess({std::move(command)}, input);
    return finished.isOk() && finished->status == 0;
}

} // namespace

SudoAuthority::SudoAuthority(const std::string& helper, std::string sudo)
    : helper_(helper), sudo_(std::move(sudo)), launcher_({sudo_, "-n", "--", helper, "--system"}) {}

std::unique_ptr<AuthorizationSession> SudoAuthority::createSession(OSStatus* status) {
    *status = errAuthorizationSuccess;
    return std::make_unique<AuthorizationSession>(); // sudo keeps what there is to keep
}

OSStatus SudoAuthority::copyRights(AuthorizationSession& /*session*/, const AuthorizationRights& /*rights*/,
                                   AuthorizationFlags flags) {
    if (!isProgram(sudo_)) {
        NSLog("%@ is not installed: install sudo to administer this computer", sudo_);
        return errAuthorizationDenied;
    }
    if (succeeds({sudo_, "-n", "-v"})) {
        return errAuthorizationSuccess;
    }
    if ((flags & kAuthorizationFlagInteractionAllowed) == 0) {
        return errAuthorizationInteractionNotAllowed;
    }
    return askForPassword();
}

OSStatus SudoAuthority::askForPassword() const {
    AdministratorRequest request{true, ""};
    for (int attempt = 0; attempt < tries; ++attempt) {
        auto answer = Host::current().presenter().runAdministratorDialog(request);
        if (!answer) {
            return errAuthorizationCanceled;
        }
        // Room for the line's end first: a text that grows would leave a copy of the password behind.
        std::string line;
        line.reserve(answer->password.size() + 1);
        line.append(answer->password).push_back('\n');
        wipe(answer->password);
        const bool isAccepted = succeeds({sudo_, "-S", "-p", "", "-v"}, line);
        wipe(line);
        if (isAccepted) {
            return errAuthorizationSuccess;
        }
        request.message = NSLocalizedString("The password was not accepted, or this account may not "
                                            "administer this computer.  Please try again.");
    }
    return errAuthorizationDenied;
}

void SudoAuthority::destroyRights(AuthorizationSession& /*session*/) {
    if (!succeeds({sudo_, "-k"})) {
        NSLog("%@ -k failed: the administrator right may last until sudo forgets it by itself", sudo_);
    }
}

OSStatus SudoAuthority::execute(AuthorizationSession& /*session*/, const std::string& tool,
                                std::span<const std::string> arguments, int* output) {
    // sudo ends in the same way when it finds no such program as when it refuses.
    if (!isProgram(helper_) || !isProgram(sudo_)) {
        return errAuthorizationToolExecuteFailure;
    }
    return launcher_.run(tool, arguments, output);
}

void SudoAuthority::outputHasEnded() {
    launcher_.collect();
}

} // namespace platform
