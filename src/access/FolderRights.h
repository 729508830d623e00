#pragma once

#include "access/Accounts.h"
#include "platform/posix/Status.h"

#include <optional>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace accesscheck {

/// Bits of a file's mode. Combined, they say what an account may do with it. The kernel takes them from the
/// owner, group and other bits and an access control list (acl(5)).
inline constexpr unsigned mayRead = 4;
inline constexpr unsigned mayWrite = 2;
inline constexpr unsigned maySearch = 1;

/// Which rule of the kernel decided what is allowed.
enum class RightsClass { Root, Owner, Group, Others, List };

/// The permissions of a folder, read once.
class FolderRights {
  public:
    /// Reads the folder's permissions. Fails, with errno as the systemError(), when they cannot be read.
    [[nodiscard]] static platform::Result<FolderRights> of(const std::string& path);

    /// True when the account may do everything in `wanted` (mayRead, mayWrite, maySearch).
    [[nodiscard]] bool allow(const Account& account, unsigned wanted) const;
    /// Returns which entry decides for the account.
    [[nodiscard]] RightsClass decidedBy(const Account& account) const;

    [[nodiscard]] const struct stat& status() const { return status_; }

    /// True when only a file's owner, and the folder's, may delete it.
    [[nodiscard]] bool isSticky() const { return (status_.st_mode & S_ISVTX) != 0; }

  private:
    struct Entry {
        id_t id = 0;
        unsigned rights = 0;
    };

    /// Returns none when the account is in none of the groups.
    [[nodiscard]] std::optional<bool> groupsAllow(const Account& account, unsigned wanted) const;

    struct stat status_ {};

    bool hasList_ = false;
    std::vector<Entry> users_;
    std::vector<Entry> groups_; ///< the owning group first
    unsigned owner_ = 0;
    unsigned others_ = 0;
    unsigned mask_ = mayRead | mayWrite | maySearch;
};

} // namespace accesscheck
