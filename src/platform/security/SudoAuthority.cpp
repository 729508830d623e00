#include "platform/security/SudoAuthority.h"

#include "platform/appkit/NSAlert.h"
#include "platform/appkit/Presenter.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSLog.h"
#include "platform/posix/Process.h"
#include "platform/posix/Secret.h"
#include "platform/security/HelperFile.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include <pwd.h>
#include <unistd.h>

namespace platform {

namespace {

bool isProgram(const std::string& path) {
    return ::access(path.c_str(), X_OK) == 0;
}

/// This program's environment, but with sudo's messages untranslated, because they are searched below.
std::vector<std::string> untranslatedEnvironment() {
    std::vector<std::string> variables = currentEnvironment();
    std::erase_if(variables, [](const std::string& each) { return each.starts_with("LC_ALL="); });
    variables.emplace_back("LC_ALL=C");
    return variables;
}

bool holdsOneOf(std::string_view text, std::initializer_list<std::string_view> parts) {
    return std::ranges::any_of(
        parts, [&](std::string_view part) { return text.find(part) != std::string_view::npos; });
}

std::string userName() {
    const passwd* entry = ::getpwuid(::getuid());
    return entry != nullptr ? entry->pw_name : std::to_string(::getuid());
}

/// What sudo says when it refuses the account whatever its password; empty when it does not.
std::string accountRefusal(const std::string& errors) {
    std::istringstream lines(errors);
    for (std::string line; std::getline(lines, line);) {
        if (holdsOneOf(line, {"expired", "account validation failure"})) {
            return line;
        }
    }
    return {};
}

template <class... Arguments>
void tell(const std::string& message, const Arguments&... arguments) {
    NSRunAlertPanel(NSLocalizedString("Changes Are Not Allowed"), message, NSLocalizedString("OK"),
                    std::nullopt, std::nullopt, arguments...);
}

std::vector<std::string> joined(std::vector<std::string> words, const std::vector<std::string>& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

} // namespace

SudoAuthority::SudoAuthority(std::string helper, const std::string& prefix, std::string sudo)
    : HelperAuthority(joined({sudo, "-n", "--"}, systemHelperCommand(helper, prefix))),
      helperFile_(std::move(helper)), helperCommand_(systemHelperCommand(helperFile_, prefix)),
      sudo_(std::move(sudo)) {}

std::unique_ptr<AuthorizationSession> SudoAuthority::createSession(OSStatus* status) {
    *status = errAuthorizationSuccess;
    return std::make_unique<AuthorizationSession>(); // sudo keeps all the state
}

std::vector<std::string> SudoAuthority::sudoWords(const std::vector<std::string>& options) const {
    return joined({sudo_}, options);
}

bool SudoAuthority::succeeds(const std::vector<std::string>& options) const {
    const auto finished = runProcess({sudoWords(options)});
    return finished.isOk() && finished->status == 0;
}

OSStatus SudoAuthority::copyRights(AuthorizationSession& /*session*/, const AuthorizationRights& /*rights*/,
                                   AuthorizationFlags flags) {
    if (helper().isRunning()) {
        return errAuthorizationSuccess;
    }
    const bool mayAsk = (flags & kAuthorizationFlagInteractionAllowed) != 0;
    Status status = isProgram(sudo_) ? checkHelperFile(helperFile_)
                                     : Status::failure("cannot change anything", "",
                                                       sudo_ + " is not installed; install the package sudo");
    if (!status.isOk()) {
        if (mayAsk) {
            NSLog("%@", status.text());
            tell("%@", status.text());
        }
        return errAuthorizationDenied;
    }
    if (holdsRight()) {
        return errAuthorizationSuccess;
    }
    return mayAsk ? askForPassword() : errAuthorizationInteractionNotAllowed;
}

bool SudoAuthority::holdsRight() {
    if (succeeds({"-n", "-v"})) {
        return true;
    }
    // sudo may require a password from this user in general, but none for running the helper.
    if (!helperIsFree_) {
        helperIsFree_ = succeeds(joined({"-n", "--", helperFile_}, {"--system", "--version"}));
    }
    return *helperIsFree_;
}

SudoAuthority::Verdict SudoAuthority::check(std::string_view passwordLine) {
    const auto finished = runProcess(
        {sudoWords({"-S", "-p", "", "-v"}), ErrorOutput::Apart, untranslatedEnvironment()}, passwordLine);
    if (!finished.isOk()) {
        complaint_ = finished.status().text();
        return Verdict::Failed;
    }
    if (finished->status == 0) {
        return Verdict::Accepted;
    }
    complaint_ = accountRefusal(finished->errors);
    if (!complaint_.empty()) {
        return Verdict::Failed;
    }
    complaint_ = lastLineOf(finished->errors);
    if (holdsOneOf(finished->errors,
                   {"may not run sudo", "is not in the sudoers file", "is not allowed to"})) {
        return Verdict::NotAllowed;
    }
    const bool isWrong = complaint_.empty() ||
                         holdsOneOf(finished->errors, {"try again", "incorrect password", "no password was"});
    return isWrong ? Verdict::WrongPassword : Verdict::Failed;
}

OSStatus SudoAuthority::askForPassword() {
    AdministratorRequest request{true, ""};
    for (int attempt = 0; attempt < tries; ++attempt) {
        auto answer = Host::current().presenter().runAdministratorDialog(request);
        if (!answer) {
            return errAuthorizationCanceled;
        }
        // Reserve room for the line end, because growing would leave a copy of the password in memory.
        std::string line;
        line.reserve(answer->password.size() + 1);
        line.append(answer->password).push_back('\n');
        wipe(answer->password);
        const Verdict verdict = check(line);
        Status started;
        if (verdict == Verdict::Accepted && !succeeds({"-n", "-v"})) {
            started = helper().start(joined({sudo_, "-S", "-p", "", "--"}, helperCommand_), line);
        }
        wipe(line);
        switch (verdict) {
        case Verdict::Accepted:
            if (started.isOk()) {
                return errAuthorizationSuccess;
            }
            tell("%@", started.text());
            return errAuthorizationDenied;
        case Verdict::NotAllowed:
            tell(NSLocalizedString(
                     "sudo does not let %@ administer this computer.  Ask an administrator to make "
                     "the change, or to allow it to %@."),
                 userName(), userName());
            return errAuthorizationDenied;
        case Verdict::Failed:
            tell(NSLocalizedString("sudo cannot be used: %@"), complaint_);
            return errAuthorizationDenied;
        case Verdict::WrongPassword:
            request.message = NSLocalizedString("The password was not accepted.  Please try again.");
        }
    }
    return errAuthorizationDenied;
}

void SudoAuthority::destroyRights(AuthorizationSession& /*session*/) {
    helper().end();
    if (isProgram(sudo_) && !succeeds({"-k"})) {
        NSLog("%@ -k failed: the administrator right may last until sudo forgets it by itself", sudo_);
    }
}

void SudoAuthority::endAction() {
    HelperAuthority::endAction();
    helper().end();
}

OSStatus SudoAuthority::execute(AuthorizationSession& /*session*/, const std::string& tool,
                                std::span<const std::string> arguments, std::string* output) {
    // Checked here because sudo ends with the same status when it does not find the program as when it
    // refuses.
    if (!isProgram(sudo_) || !checkHelperFile(helperFile_).isOk()) {
        return errAuthorizationToolExecuteFailure;
    }
    return helper().run(tool, arguments, output);
}

} // namespace platform
