#pragma once

#include "platform/netinfo/RecordBlock.h"

#include <string>

namespace platform {

/// Strings in the form of passwd(5) and group(5).
struct AccountLists {
    std::string passwd;
    std::string group;
    /// Sections of smb.conf(5): the Public folder of each user who shares it, for those who may log on to
    /// read. Only a folder that is there and the user's own, reached by no link.
    std::string publicFolders;
};

/// The accounts of `users` and `groups` (records of the directory), then those of this computer whose
/// names are not in the directory. A record without a name or a number that the form can hold is left out.
[[nodiscard]] AccountLists accountLists(const RecordBlock& users, const RecordBlock& groups);

} // namespace platform
