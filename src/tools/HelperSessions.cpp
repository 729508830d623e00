#include "tools/HelperSessions.h"

#include "platform/samba/Sessions.h"

namespace tools {

using platform::Status;

platform::Result<std::string> listSessions(const std::optional<platform::SambaAccounts>& root,
                                           std::span<const std::string> arguments) {
    return arguments.empty() ? platform::sessionListing(root)
                             : Status::failure("wrong arguments", {}, "use smbstatus");
}

Status endSessions(const std::optional<platform::SambaAccounts>& root,
                   std::span<const std::string> arguments) {
    if (arguments.size() == 3 && arguments[0] == "smbd") {
        if (arguments[1] == "close-share") {
            return platform::closeShare(root, arguments[2]);
        }
        if (arguments[1] == "kill-client-ip") {
            return platform::disconnectComputer(root, arguments[2]);
        }
    }
    return Status::failure("wrong arguments", {}, "use smbcontrol smbd close-share|kill-client-ip WHAT");
}

} // namespace tools
