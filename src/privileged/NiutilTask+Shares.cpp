#include "privileged/NiutilTask.h"

#include "directory/ReportLine.h"
#include "platform/appkit/NSAlert.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/SystemPaths.h"

#include <algorithm>
#include <ranges>

namespace {

namespace systempath = platform::systempath;

std::string sharePath(const std::string& shareName) {
    return stringWithFormat("/config/Brindle/%@", shareName);
}

} // namespace

bool NiutilTask::createShare(const std::string& shareName, const std::string& directoryPath,
                             std::int32_t sharingAFS, std::int32_t inheritPerms, std::int32_t inheritOwner) {
    if (!authenticate()) {
        return false;
    }
    constexpr const char* pathMessage = "outString not empty for create directory_path: %@";
    const std::vector<Property> properties = {
        {"directory_path", directoryPath, pathMessage},
        {"afp_shared", stringWithFormat("%d", sharingAFS), pathMessage},
        {"afp_name", shareName, pathMessage},
        {"afp_use_parent_privs", stringWithFormat("%d", inheritPerms),
         "outString not empty for create afp_use_parent_privs: %@"},
        {"afp_use_parent_owner", stringWithFormat("%d", inheritOwner),
         "outString not empty for create afp_use_parent_owner: %@"},
    };
    const std::string path = sharePath(shareName);
    if (!runOrStop(systempath::nicl, std::vector<std::string>{".", "-create", path},
                   "outString non empty for create Directory: %@")) {
        return false;
    }
    return std::ranges::all_of(properties, [&](const Property& property) {
        return runOrStop(systempath::nicl,
                         std::vector<std::string>{".", "-create", path, property.name, property.value},
                         property.message);
    });
}

void NiutilTask::deleteShare(const std::string& shareName) {
    if (authenticate()) {
        runAndLog(systempath::nicl, std::vector<std::string>{".", "-delete", sharePath(shareName)},
                  "outString non empty for deleteGroup: %@");
    }
}

void NiutilTask::deleteAllShares() {
    if (!authenticate()) {
        return;
    }
    const Report shares = currentShares();
    for (const std::string& line : std::views::reverse(*shares)) {
        const std::string name(ReportPieces(line).at(0));
        const RunResult result =
            runTool(systempath::nicl, std::vector<std::string>{".", "-delete", sharePath(name)});
        if (result.output != "") {
            NSBeep();
            NSLog("Delete All Shares did not complete properly for share: %@ with error: %@", name,
                  result.output);
        }
        if (result.status != errAuthorizationSuccess) {
            NSBeep();
            NSLog("Error %d in Delete AuthorizationExecuteWithPrivileges", result.status);
        }
    }
}

bool NiutilTask::cp(const std::string& source, const std::string& to) {
    return authenticate() &&
           runOrStop(systempath::cp, std::vector<std::string>{source, to}, "outString non empty for cp: %@");
}

void NiutilTask::changePermissions(const std::string& directory, const std::string& owner,
                                   const std::string& group, std::int32_t permissions) {
    if (!authenticate()) {
        return;
    }
    constexpr const char* message = "outString non empty for create User: %@";
    runAndLog(systempath::chown, std::vector<std::string>{stringWithFormat("%@:%@", owner, group), directory},
              message);
    const std::string mode = stringWithFormat("%o", static_cast<std::uint32_t>(permissions));
    runAndLog(systempath::chmod, std::vector<std::string>{mode, directory}, message);
}
