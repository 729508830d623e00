#pragma once

#include "platform/posix/Status.h"

#include <string>
#include <vector>

namespace platform {

class LocalDomain;

/// An account that the directory's writers have made. The computer's account of that name is the same account
/// only if it has the same number.
struct MadeAccount {
    bool isUser = false;
    std::string name;
    std::string number;
};

/// The accounts in the domain's files that were made by the writers of its store; empty when there is no
/// store. Waits `waitSeconds` for writers. Fails when the store cannot be read.
[[nodiscard]] Result<std::vector<MadeAccount>> madeAccounts(const LocalDomain& domain, int waitSeconds);

} // namespace platform
