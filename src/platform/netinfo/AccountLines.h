#pragma once

#include "platform/netinfo/AccountFiles.h"
#include "platform/posix/Status.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <grp.h>
#include <pwd.h>

namespace platform {

// The lines of the files of accounts themselves, as those who change them need them: the accounts that the
// computer has of its own, in their order. Of several lines with one name the first is the account.

struct UserLine {
    std::string name;
    unsigned uid = 0;
    unsigned gid = 0;
    std::string comment;
    std::string home;
    std::string shell;
};

struct GroupLine {
    std::string name;
    unsigned gid = 0;
    std::vector<std::string> members;
};

/// Each fails when the file cannot be opened.
[[nodiscard]] Status forEachUserLine(const AccountFiles& files,
                                     const std::function<void(const passwd&)>& use);
[[nodiscard]] Status forEachGroupLine(const AccountFiles& files,
                                      const std::function<void(const group&)>& use);
[[nodiscard]] Result<std::vector<UserLine>> readUserLines(const AccountFiles& files);
[[nodiscard]] Result<std::vector<GroupLine>> readGroupLines(const AccountFiles& files);

/// Whether the members of the group of this name may administer the computer.
[[nodiscard]] bool isGroupOfAdministrators(std::string_view name);

/// The computer's ordinary accounts have numbers from the lowest to the highest; those below are the
/// system's.
struct AccountLimits {
    unsigned lowestUser = 1000;
    unsigned highestUser = 60000;
    unsigned lowestGroup = 1000;
};

/// The limits of this computer, login.defs(5); those above where it does not tell.
[[nodiscard]] AccountLimits readAccountLimits(const std::string& file = "/etc/login.defs");

} // namespace platform
