#pragma once

#include "platform/netinfo/RecordBlock.h"

#include <cstdint>
#include <string>

struct sqlite3;

namespace platform {

/// A computer's own accounts, as passwd(5) and group(5) have them. Where a domain has such files, its /users
/// and /groups are their lines, in their order; what the lines cannot hold (sharedDir, hint, the writers'
/// properties) comes from the store's record of that name, if it was written for the account's own id. A
/// record of the store without a line is not listed: its account is not made yet, or gone.
struct AccountFiles {
    std::string passwd = "/etc/passwd";
    std::string group = "/etc/group";
};

/// The ids of the records that stand for lines. The store's own ids stay far below.
inline constexpr std::int64_t firstUserLineId = std::int64_t{1} << 30;
inline constexpr std::int64_t firstGroupLineId = firstUserLineId + (std::int64_t{1} << 29);

/// How far the writers of the store have come with an account; no reader sees this property.
inline constexpr const char* accountStateProperty = "_brindle_account";
/// Its value for an account that they have made.
inline constexpr const char* accountStateMade = "made";

/// The group in which the directory lists whoever may administer the computer.
inline constexpr const char* administratorsGroup = "admin";
inline constexpr unsigned administratorsGroupId = 80;

/// The lines of the passwd file as records: name, uid, gid, realname (the comment's first field), home,
/// shell, passwd, then the store's properties. `usersDirectory` is the id of the store's /users. `*error` is
/// SQLite's code, or SQLITE_CANTOPEN when the file cannot be read.
[[nodiscard]] RecordBlock userLines(const AccountFiles& files, sqlite3* store, std::int64_t usersDirectory,
                                    int* error);
/// The lines of the group file as records: name, gid, passwd, users. The members of the groups sudo, wheel
/// and admin are the members of "admin", which comes last.
[[nodiscard]] RecordBlock groupLines(const AccountFiles& files, sqlite3* store, std::int64_t groupsDirectory,
                                     int* error);

} // namespace platform
