#pragma once

#include "platform/posix/Status.h"

#include <string>

#include <sys/types.h>

namespace platform {

// Public folders of this computer's users, offered over SMB as Samba's own user shares, which live beside
// smb.conf and need no line in it. As root only.

/// An account whose Public folder is meant.
struct PublicFolderOwner {
    std::string name;
    uid_t uid = 0;
    gid_t gid = 0;
    std::string home;
};

/// Why no Public folder of the account is offered: it needs an ordinary number, from `lowest` to `highest`,
/// and a home folder that is its own. Empty where one is.
[[nodiscard]] std::string whyNoPublicFolder(const PublicFolderOwner& owner, uid_t lowest, uid_t highest);

/// Offers HOME/Public, which is made where it is missing (the user's, for all to read), as "NAME's Public":
/// everybody who may connect reads it, guests only where Samba allows them in user shares. Nothing is made or
/// offered through a link. Offering it again is no failure.
[[nodiscard]] Status offerPublicFolder(const PublicFolderOwner& owner);

/// Takes the offer away again, where there is one; the folder stays.
[[nodiscard]] Status takePublicFolderAway(const std::string& name);

/// The name of the share.
[[nodiscard]] std::string publicShareName(const std::string& user);

} // namespace platform
