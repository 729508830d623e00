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

// The lines of the account files themselves, for those who change them: the computer's own accounts, in
// order. Of several lines with the same name only the first counts.

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

/// Each fails when the file cannot be read.
[[nodiscard]] Status forEachUserLine(const AccountFiles& files,
                                     const std::function<void(const passwd&)>& use);
[[nodiscard]] Status forEachGroupLine(const AccountFiles& files,
                                      const std::function<void(const group&)>& use);
[[nodiscard]] Result<std::vector<UserLine>> readUserLines(const AccountFiles& files);
[[nodiscard]] Result<std::vector<GroupLine>> readGroupLines(const AccountFiles& files);

/// Whether the members of this group may administer the computer.
[[nodiscard]] bool isGroupOfAdministrators(std::string_view name);

/// The numbers of ordinary accounts go from the lowest to the highest; lower numbers are the system's.
struct AccountLimits {
    unsigned lowestUser = 1000;
    unsigned highestUser = 60000;
    unsigned lowestGroup = 1000;
};

/// The limits of this computer, from login.defs(5); the defaults above for those that it does not set.
[[nodiscard]] AccountLimits readAccountLimits(const std::string& file = "/etc/login.defs");

} // namespace platform
