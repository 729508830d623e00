#pragma once

#include "platform/netinfo/RecordBlock.h"

#include <cstdint>
#include <string>

struct sqlite3;

namespace platform {

/// The files with a computer's own accounts, in the form of passwd(5) and group(5). In a domain with such
/// files, /users and /groups consist of their lines, in order. What the lines cannot hold (sharedDir, hint,
/// the writers' properties) comes from the store's record of the same name, if that was written for an
/// account with the same id. A record in the store without a line is not listed: its account has not been
/// made yet, or is gone.
struct AccountFiles {
    std::string passwd = "/etc/passwd";
    std::string group = "/etc/group";
};

/// The ids of the records that represent lines start here. The store's own ids stay far below.
inline constexpr std::int64_t firstUserLineId = std::int64_t{1} << 30;
inline constexpr std::int64_t firstGroupLineId = firstUserLineId + (std::int64_t{1} << 29);

/// The property in which the store's writers note the state of an account; readers do not see it.
inline constexpr const char* accountStateProperty = "_brindle_account";
/// Its value for an account that the writers have made.
inline constexpr const char* accountStateMade = "made";

/// The group in which the directory lists those who may administer the computer.
inline constexpr const char* administratorsGroup = "admin";
inline constexpr unsigned administratorsGroupId = 80;

/// The lines of the passwd file as records: name, uid, gid, realname (the comment's first field), home,
/// shell, passwd, then the store's properties. `usersDirectory` is the id of the store's /users. `*error`
/// receives SQLite's code, or SQLITE_CANTOPEN when the file cannot be read.
[[nodiscard]] RecordBlock userLines(const AccountFiles& files, sqlite3* store, std::int64_t usersDirectory,
                                    int* error);
/// The lines of the group file as records: name, gid, passwd, users, then the store's properties. The group
/// "admin" comes last, and its members are those of sudo, wheel and admin.
[[nodiscard]] RecordBlock groupLines(const AccountFiles& files, sqlite3* store, std::int64_t groupsDirectory,
                                     int* error);

} // namespace platform
