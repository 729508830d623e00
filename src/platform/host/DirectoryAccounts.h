#pragma once

#include "platform/foundation/Services.h"

#include <optional>
#include <string>
#include <utility>

namespace platform {

/// Accounts by number and by name, looked up first in the directory in `storeFile` (unless that is empty),
/// then among this computer's accounts. Nothing is cached between calls, so that an account that was just
/// made is found and one that was deleted is not.
class DirectoryAccounts : public AccountNames {
  public:
    explicit DirectoryAccounts(std::string storeFile) : storeFile_(std::move(storeFile)) {}

    [[nodiscard]] std::optional<std::string> userName(uid_t uid) const override;
    [[nodiscard]] std::optional<std::string> groupName(gid_t gid) const override;
    [[nodiscard]] std::optional<uid_t> userId(const std::string& name) const;
    [[nodiscard]] std::optional<gid_t> groupId(const std::string& name) const;

  private:
    std::string storeFile_;
};

} // namespace platform
