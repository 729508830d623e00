#pragma once

#include "access/Accounts.h"
#include "platform/samba/SambaAccounts.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

class DirectoryView;

namespace accesscheck {

/// The accounts that the host's SMB server knows: the directory's, and this computer's for names that the
/// directory does not have. Groups, and users when many are asked for, are read from the directory once.
class ServerAccounts : public Accounts {
  public:
    /// `root` is an embedded root's own server; none for this computer's.
    explicit ServerAccounts(std::optional<platform::SambaAccounts> root) : root_(std::move(root)) {}

    [[nodiscard]] std::optional<Account> account(const std::string& name) override;
    [[nodiscard]] std::optional<gid_t> group(const std::string& name) override;
    [[nodiscard]] LogOn logOn(const std::string& name) override;
    [[nodiscard]] std::optional<Account> serverAccount() override;

    [[nodiscard]] std::string problem() const override { return problem_; }

  private:
    /// The directory's groups.
    struct Groups {
        std::map<std::string, gid_t> byName;
        std::map<std::string, std::vector<gid_t>> ofMember; ///< by the user's name
    };

    [[nodiscard]] std::optional<Account> directoryAccount(const std::string& name);
    [[nodiscard]] std::optional<Account> eitherAccount(const std::string& name);
    void noteFailure(const DirectoryView& directory);
    [[nodiscard]] const Groups& groups();
    void addGroupsOf(Account& account);
    [[nodiscard]] platform::Result<std::optional<platform::SambaUser>> sambaUser(const std::string& name);

    std::optional<platform::SambaAccounts> root_;
    std::optional<Groups> groups_;
    int accountsAskedFor_ = 0;
    /// Every user of the directory by name, with none for a record without valid numbers.
    std::optional<std::map<std::string, std::optional<Account>>> users_;
    std::string problem_;
    bool hasAskedForOne_ = false;
    /// The whole password database by name in lower case, read when a second user is asked about: every
    /// question to Samba starts a program.
    std::optional<platform::Result<std::map<std::string, platform::SambaUser>>> passwords_;
};

} // namespace accesscheck
