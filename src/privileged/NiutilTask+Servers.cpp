#include "privileged/NiutilTask.h"

#include "platform/appkit/NSAlert.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/SystemPaths.h"
#include "privileged/ToolStream.h"

void NiutilTask::restartAFS() {
    hangUp("/bin/ps -ax | /usr/bin/grep AppleFileServer | /usr/bin/grep -v grep | /usr/bin/awk '{print $1}'");
}

void NiutilTask::restartSMB() {
    hangUp("/bin/ps -ax | /usr/bin/grep smbd | /usr/bin/grep -v grep | /usr/bin/awk '{print $1}'");
}

void NiutilTask::hangUp(const std::string& listingCommand) {
    if (!authenticate()) {
        return;
    }
    platform::Processes& processes = platform::Host::current().processes();
    std::FILE* listing = processes.open(listingCommand, "r");
    if (listing == nullptr) {
        NSLog("Error opening pipe: %@", listingCommand);
        NSBeep();
        return;
    }
    const std::optional<std::string> text = readToolStream(listing);
    processes.close(listing);
    std::vector<std::string> ids = componentsSeparatedByString(text.value_or(""), "\n");
    ids.pop_back(); // what follows the last line break is not a line
    for (const std::string& id : ids) {
        const std::vector<std::string> arguments = {"-1", id};
        // No stream: what the tool writes does not matter.
        const OSStatus status = AuthorizationExecuteWithPrivileges(
            authorizationRef, platform::systempath::kill, kAuthorizationFlagDefaults, arguments, nullptr);
        if (status != errAuthorizationSuccess) {
            NSBeep();
            NSLog("Error %d in Kill AuthorizationExecuteWithPrivileges", status);
        }
    }
}
