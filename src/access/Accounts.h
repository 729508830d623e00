#pragma once

#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace accesscheck {

/// An account as the file system knows it.
struct Account {
    std::string name;
    uid_t uid = 0;
    gid_t gid = 0;
    std::vector<gid_t> groups; ///< every group that it is a member of, including the primary one
};

/// Whether the SMB server lets somebody log on with the right password.
enum class LogOn { Possible, NoAccount, NoPassword, Disabled, Unknown };

/// The accounts as the SMB server knows them. Tests supply their own.
class Accounts {
  public:
    virtual ~Accounts() = default;
    /// Returns none when the server knows no such account.
    [[nodiscard]] virtual std::optional<Account> account(const std::string& name) = 0;
    [[nodiscard]] virtual std::optional<gid_t> group(const std::string& name) = 0;
    [[nodiscard]] virtual LogOn logOn(const std::string& name) = 0;
    /// Returns the account that the server uses for everything because it does not run as root; none when it
    /// can become each user.
    [[nodiscard]] virtual std::optional<Account> serverAccount() = 0;
    /// Returns why accounts may be missing from the answers so far; empty when none is.
    [[nodiscard]] virtual std::string problem() const = 0;
};

} // namespace accesscheck
