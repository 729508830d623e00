#include "review/ConnectedClients.h"

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/SystemPaths.h"
#include "platform/posix/Process.h"
#include "privileged/NiutilTask.h"

#include <utility>

#include <unistd.h>

namespace review {

namespace systempath = platform::systempath;

namespace {

using Result = platform::Result<std::vector<platform::Session>>;

Result cannotSee(std::string why) {
    return platform::Status::failure(NSLocalizedString("cannot see who is connected"), {}, std::move(why));
}

/// The sessions of the listing, or why there are none, translated if it is one of our own reasons.
Result sessionsOf(const platform::Result<std::string>& listing) {
    Result sessions = listing.isOk() ? platform::sessionsIn(*listing) : Result(listing.status());
    const std::string why(sessions.status().why());
    std::string translated = NSLocalizedString(why);
    return translated == why ? sessions : cannotSee(std::move(translated));
}

} // namespace

platform::Result<std::vector<platform::Session>>
connectedClients(const std::optional<platform::SambaPaths>& root) {
    if (root || ::geteuid() == 0) {
        return sessionsOf(
            platform::sessionListing(root ? std::optional(platform::SambaAccounts(*root)) : std::nullopt));
    }
    const auto listing = NiutilTask::sharedInstance().outputOf(systempath::smbstatus, {});
    if (!listing) {
        return cannotSee(NSLocalizedString("only an administrator may"));
    }
    // How an error message of the helper begins.
    constexpr std::string_view complaint = "smbstatus: ";
    return listing->starts_with(complaint) ? cannotSee(platform::lastLineOf(*listing)) : sessionsOf(*listing);
}

std::vector<std::string> disconnectionWords(Disconnection kind, const std::string& what) {
    return {"smbd", kind == Disconnection::Share ? "close-share" : "kill-client-ip", what};
}

bool disconnect(Disconnection kind, const std::string& what) {
    return NiutilTask::sharedInstance().carryOut(systempath::smbcontrol, disconnectionWords(kind, what));
}

} // namespace review
