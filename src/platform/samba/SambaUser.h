#pragma once

#include "platform/posix/Process.h"
#include "platform/posix/Status.h"

#include <optional>
#include <string>
#include <vector>

namespace platform {

/// An account's entry in Samba's password database.
struct SambaUser {
    std::string name;
    bool isDisabled = false;
    bool hasPassword = false;
};

/// The arguments with which pdbedit(8) lists one account, or all of them, in the form of smbpasswd(5).
[[nodiscard]] std::vector<std::string> sambaUserWords(const std::string& user);
[[nodiscard]] std::vector<std::string> allSambaUsersWords();
/// The account in the output of such a run; none when pdbedit does not know it. The output, which holds
/// password hashes, is wiped. Fails with pdbedit's error message.
[[nodiscard]] Result<std::optional<SambaUser>> sambaUserOf(FinishedProcess& run);
/// The same for all accounts.
[[nodiscard]] Result<std::vector<SambaUser>> sambaUsersOf(FinishedProcess& run);

} // namespace platform
