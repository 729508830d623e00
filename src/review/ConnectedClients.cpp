#include "review/ConnectedClients.h"

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/SystemPaths.h"
#include "platform/posix/Process.h"
#include "privileged/NiutilTask.h"

#include <unistd.h>

namespace review {

namespace systempath = platform::systempath;

platform::Result<std::vector<platform::Session>>
connectedClients(const std::optional<platform::SambaPaths>& root) {
    if (root || ::geteuid() == 0) {
        const auto listing =
            platform::sessionListing(root ? std::optional(platform::SambaAccounts(*root)) : std::nullopt);
        return listing.isOk() ? platform::sessionsIn(*listing) : listing.status();
    }
    const auto listing = NiutilTask::sharedInstance().outputOf(systempath::smbstatus, {});
    using Result = platform::Result<std::vector<platform::Session>>;
    const std::string what = NSLocalizedString("cannot see who is connected");
    if (!listing) {
        return Result(platform::Status::failure(what, {}, NSLocalizedString("only an administrator may")));
    }
    // How an error message of the helper begins.
    constexpr std::string_view complaint = "smbstatus: ";
    return listing->starts_with(complaint)
               ? Result(platform::Status::failure(what, {}, platform::lastLineOf(*listing)))
               : platform::sessionsIn(*listing);
}

std::vector<std::string> disconnectionWords(Disconnection kind, const std::string& what) {
    return {"smbd", kind == Disconnection::Share ? "close-share" : "kill-client-ip", what};
}

bool disconnect(Disconnection kind, const std::string& what) {
    return NiutilTask::sharedInstance().carryOut(systempath::smbcontrol, disconnectionWords(kind, what));
}

} // namespace review
