#pragma once

#include "platform/posix/Status.h"

#include <string>
#include <vector>

namespace platform {

class LocalDomain;

/// An account that the directory's writers have made. It is the computer's account of that name only where
/// that has the same number.
struct MadeAccount {
    bool isUser = false;
    std::string name;
    std::string number;
};

/// The accounts of the domain's files that were made by the writers of its store; none where there is no
/// store. Waits for writers so many seconds. Fails when the store cannot be read.
[[nodiscard]] Result<std::vector<MadeAccount>> madeAccounts(const LocalDomain& domain, int waitSeconds);

} // namespace platform
