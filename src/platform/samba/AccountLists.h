#pragma once

#include "platform/netinfo/RecordBlock.h"

#include <string>

namespace platform {

/// The account lists of a root's own SMB server.
struct AccountLists {
    std::string passwd; ///< in the form of passwd(5)
    std::string group;  ///< in the form of group(5)
    /// Sections of smb.conf(5): the Public folder of each user who shares it, to be read by everybody who may
    /// log on. Left out are folders that do not exist, belong to somebody else, or are reached through a
    /// link.
    std::string publicFolders;
};

/// Lists the accounts in `users` and `groups` (records of the directory), then those of this computer whose
/// names are not in the directory. A record without a valid name and number is left out.
[[nodiscard]] AccountLists accountLists(const RecordBlock& users, const RecordBlock& groups);

} // namespace platform
