#include "privileged/NiutilTask.h"

#include "directory/ni_report.h"
#include "platform/appkit/NSAlert.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/SystemPaths.h"
#include "privileged/ToolStream.h"

namespace {

constexpr const char* statusMessage = "Error %d in AuthorizationExecuteWithPrivileges";

} // namespace

NiutilTask& NiutilTask::sharedInstance() {
    return platform::Host::current().sharedInstance<NiutilTask>();
}

NiutilTask::~NiutilTask() {
    deauthenticate();
}

bool NiutilTask::isAuthenticated() {
    if (authorizationRef == nullptr) {
        // Without a session every request below fails, so the status is not needed.
        static_cast<void>(AuthorizationCreate({}, kAuthorizationFlagDefaults, &authorizationRef));
    }
    return copyRights(kAuthorizationFlagExtendRights);
}

bool NiutilTask::authenticate() {
    if (!isAuthenticated()) {
        fetchPassword();
    }
    return isAuthenticated();
}

bool NiutilTask::fetchPassword() {
    if (!copyRights(kAuthorizationFlagInteractionAllowed | kAuthorizationFlagExtendRights)) {
        return false;
    }
    NSNotificationCenter::defaultCenter().postNotificationName(NiutilAuthenticatedNotification, this);
    return true;
}

void NiutilTask::deauthenticate() {
    if (authorizationRef == nullptr) {
        return;
    }
    AuthorizationFree(authorizationRef, kAuthorizationFlagDestroyRights);
    authorizationRef = nullptr;
    NSNotificationCenter::defaultCenter().postNotificationName(NiutilDeauthenticatedNotification, this);
}

bool NiutilTask::copyRights(AuthorizationFlags flags) {
    // One right covers every tool; nicl is named for all of them.
    static const AuthorizationRights rights = {{"system.privilege.admin", platform::systempath::nicl, 0}};
    AuthorizationRights* granted = nullptr;
    if (AuthorizationCopyRights(authorizationRef, rights, flags, &granted) != errAuthorizationSuccess) {
        return false;
    }
    AuthorizationFreeItemSet(granted);
    return true;
}

NiutilTask::ReportsKept::~ReportsKept() {
    if (--task_.keepers_ == 0) {
        task_.shares_ = task_.users_ = task_.groups_ = {};
    }
}

NiutilTask::Report NiutilTask::report(const std::string& path, std::span<const std::string> properties,
                                      KeptReport& kept) {
    // A failure has been logged and shows as an empty list.
    static_cast<void>(ni_report_local(path, properties, kept));
    Report lines = kept.lines != nullptr ? kept.lines : std::make_shared<const std::vector<std::string>>();
    if (keepers_ == 0) {
        kept = {};
    }
    return lines;
}

NiutilTask::Report NiutilTask::currentShares() {
    const std::vector<std::string> properties = {"name",     "directory_path",       "afp_shared",
                                                 "afp_name", "afp_use_parent_privs", "afp_use_parent_owner"};
    return report("/config/Brindle", properties, shares_);
}

NiutilTask::Report NiutilTask::currentUsers() {
    const std::vector<std::string> properties = {"name", "uid", "sharedDir", "realname", "gid"};
    return report("/users", properties, users_);
}

NiutilTask::Report NiutilTask::currentGroups() {
    const std::vector<std::string> properties = {"gid", "name", "users"};
    return report("/groups", properties, groups_);
}

bool NiutilTask::carryOut(const std::string& tool, std::span<const std::string> arguments) {
    return authenticate() && runOrStop(tool, arguments, "outString not empty for " + tool + ": %@");
}

std::optional<std::string> NiutilTask::outputOf(const std::string& tool,
                                                std::span<const std::string> arguments) {
    if (!authenticate()) {
        return std::nullopt;
    }
    RunResult result = runTool(tool, arguments);
    if (result.status != errAuthorizationSuccess) {
        NSBeep();
        NSLog(statusMessage, result.status);
        return std::nullopt;
    }
    return std::move(result.output);
}

NiutilTask::RunResult NiutilTask::runTool(const std::string& tool, std::span<const std::string> arguments,
                                          std::optional<std::size_t> secretArgument) {
    std::FILE* stream = nullptr;
    const OSStatus status = AuthorizationExecuteWithPrivileges(
        authorizationRef, tool, kAuthorizationFlagDefaults, arguments, &stream, secretArgument);
    if (status != errAuthorizationSuccess) {
        return {status, ""};
    }
    std::optional<std::string> output = readToolStream(stream);
    std::fclose(stream);
    return {status, std::move(output)};
}

bool NiutilTask::runOrStop(const std::string& tool, std::span<const std::string> arguments,
                           std::string_view message) {
    const RunResult result = runTool(tool, arguments);
    if (result.output != "") {
        NSBeep();
        NSLog(message, result.output);
        return false;
    }
    if (result.status != errAuthorizationSuccess) {
        NSBeep();
        NSLog(statusMessage, result.status);
        return false;
    }
    return true;
}

void NiutilTask::runAndLog(const std::string& tool, std::span<const std::string> arguments,
                           std::string_view message, std::optional<std::size_t> secretArgument) {
    const RunResult result = runTool(tool, arguments, secretArgument);
    if (result.output != "") {
        NSBeep();
        NSLog(message, result.output);
    }
    if (result.status != errAuthorizationSuccess) {
        NSBeep();
        NSLog(statusMessage, result.status);
    }
}
