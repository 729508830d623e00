#pragma once

#include "platform/posix/Process.h"
#include "platform/posix/Status.h"

#include <optional>
#include <string>
#include <vector>

namespace platform {

/// How an account stands in Samba's password database.
struct SambaUser {
    std::string name;
    bool isDisabled = false;
    bool hasPassword = false;
};

/// What pdbedit(8) is told in order to show the account, or all of them, in the form of smbpasswd(5).
[[nodiscard]] std::vector<std::string> sambaUserWords(const std::string& user);
[[nodiscard]] std::vector<std::string> allSambaUsersWords();
/// What it then said; none when it knows no such account. The output, which holds password hashes, is wiped.
/// Fails with pdbedit's complaint.
[[nodiscard]] Result<std::optional<SambaUser>> sambaUserOf(FinishedProcess& run);
/// The same for all accounts.
[[nodiscard]] Result<std::vector<SambaUser>> sambaUsersOf(FinishedProcess& run);

} // namespace platform
