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
/// directory does not have. Groups are read from the directory once.
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
    struct Group {
        gid_t gid = 0;
        std::vector<std::string> members;
    };

    [[nodiscard]] std::optional<Account> directoryAccount(const std::string& name);
    [[nodiscard]] std::optional<Account> eitherAccount(const std::string& name);
    void noteFailure(const DirectoryView& directory);
    /// The directory's groups by name.
    [[nodiscard]] const std::map<std::string, Group>& groups();
    void addGroupsOf(Account& account);
    [[nodiscard]] platform::Result<std::optional<platform::SambaUser>> sambaUser(const std::string& name);

    std::optional<platform::SambaAccounts> root_;
    std::optional<std::map<std::string, Group>> groups_;
    std::string problem_;
    bool hasAskedForOne_ = false;
    /// The whole password database by name in lower case, read when a second user is asked about: every
    /// question to Samba starts a program.
    std::optional<platform::Result<std::map<std::string, platform::SambaUser>>> passwords_;
};

} // namespace accesscheck
