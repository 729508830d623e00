#pragma once

#include "platform/netinfo/RecordBlock.h"

#include <string>

namespace platform {

/// Texts in the form of passwd(5) and group(5).
struct AccountLists {
    std::string passwd;
    std::string group;
};

/// The accounts of `users` and `groups` (records of the directory), then those of this computer that the
/// directory has none of the name of. A record without a name or a number that the form can hold is left out.
[[nodiscard]] AccountLists accountLists(const RecordBlock& users, const RecordBlock& groups);

} // namespace platform
