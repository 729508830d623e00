#pragma once

#include "access/Accounts.h"
#include "platform/posix/Status.h"

#include <optional>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace accesscheck {

/// What an account may do with a file or folder, by the bits of its mode: any of 4 (read), 2 (write) and 1
/// (search), as the kernel reads owner, group, others and an access control list (acl(5)).
inline constexpr unsigned mayRead = 4;
inline constexpr unsigned mayWrite = 2;
inline constexpr unsigned maySearch = 1;

/// How the kernel came to what it allows.
enum class RightsClass { Root, Owner, Group, Others, List };

/// A folder, looked at once.
class FolderRights {
  public:
    /// Fails when the folder cannot be looked at; its systemError() is errno's.
    [[nodiscard]] static platform::Result<FolderRights> of(const std::string& path);

    /// Whether the account may do all of `wanted`.
    [[nodiscard]] bool allow(const Account& account, unsigned wanted) const;
    /// Which of its entries decides for the account.
    [[nodiscard]] RightsClass decidedBy(const Account& account) const;

    [[nodiscard]] const struct stat& status() const { return status_; }

    /// True when only a file's owner, and the folder's, may delete it.
    [[nodiscard]] bool isSticky() const { return (status_.st_mode & S_ISVTX) != 0; }

  private:
    struct Entry {
        id_t id = 0;
        unsigned rights = 0;
    };

    /// None when the account is a member of none of the groups.
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
