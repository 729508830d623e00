#pragma once

#include "platform/foundation/Services.h"

#include <optional>
#include <string>
#include <utility>

namespace platform {

/// Accounts by number and by name: the directory in `storeFile` is asked first, where one is given, this
/// computer second. Nothing is kept between calls, so that an account that was just made is found and one
/// that was deleted is not.
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
