#pragma once

#include "platform/foundation/Services.h"
#include "platform/netinfo/StoreStamp.h"
#include "platform/posix/Status.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace platform {

/// Accounts by number and by name, looked up first in the directory in `storeFile` (unless that is empty),
/// then among this computer's accounts. Every call looks at the directory as it is then. Not thread-safe.
class DirectoryAccounts : public AccountNames {
  public:
    explicit DirectoryAccounts(std::string storeFile) : storeFile_(std::move(storeFile)) {}

    [[nodiscard]] std::optional<std::string> userName(uid_t uid) const override;
    [[nodiscard]] std::optional<std::string> groupName(gid_t gid) const override;
    /// The number of the account called `name`; none when there is no such account. Fails when the directory
    /// cannot be read, because it may have an account that goes before the computer's account of that name.
    [[nodiscard]] Result<std::optional<uid_t>> userId(const std::string& name) const;
    [[nodiscard]] Result<std::optional<gid_t>> groupId(const std::string& name) const;

  private:
    using Names = std::map<unsigned, std::optional<std::string>>;

    [[nodiscard]] std::optional<std::string> nameOf(const char* path, std::string_view property,
                                                    unsigned number, Names& names) const;

    std::string storeFile_;
    // The names that have been looked for since the directory changed last: it has no index of numbers.
    mutable std::optional<StoreStamp> stamp_;
    mutable Names users_;
    mutable Names groups_;
};

} // namespace platform
