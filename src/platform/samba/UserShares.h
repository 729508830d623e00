#pragma once

#include "platform/posix/Status.h"

#include <string>

#include <sys/types.h>

namespace platform {

// Public folders of this computer's users, offered over SMB as Samba's user shares, which are kept outside
// smb.conf. Only for root.

/// The account that a Public folder belongs to.
struct PublicFolderOwner {
    std::string name;
    uid_t uid = 0;
    gid_t gid = 0;
    std::string home;
};

/// Why the account's Public folder is not offered, as a key of the string table with a place for the
/// account's name; null when it is offered. The account needs a number from `lowest` to `highest` and its own
/// home folder.
[[nodiscard]] const char* whyNoPublicFolder(const PublicFolderOwner& owner, uid_t lowest, uid_t highest);

/// Offers HOME/Public as "NAME's Public", making the folder if it is missing (owned by the user, readable by
/// everybody). Everybody who may connect can read it; guests only if Samba allows them in user shares.
/// Nothing is made or offered through a link. Offering it again is not a failure.
[[nodiscard]] Status offerPublicFolder(const PublicFolderOwner& owner);

/// Withdraws the offer, if there is one; the folder stays.
[[nodiscard]] Status takePublicFolderAway(const std::string& name);

/// The name of the share under which a user's Public folder is offered.
[[nodiscard]] std::string publicShareName(const std::string& user);

} // namespace platform
