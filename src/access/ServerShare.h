#pragma once

#include "access/Accounts.h"
#include "model/SMBConf.h"
#include "model/ServerSettings.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace accesscheck {

/// A share as the SMB server reads it: all sections with its name, whatever the case, and the defaults in
/// "global". It refers to the model, which must outlive it.
class ServerShare {
  public:
    ServerShare(std::string name, std::vector<const SMBShare*> sections,
                const std::vector<const SMBShare*>* globals)
        : name_(std::move(name)), sections_(std::move(sections)), globals_(globals) {}

    /// The name as the section's header spells it.
    [[nodiscard]] const std::string& name() const { return name_; }

    /// Returns the value of a setting; empty when neither the share nor "global" has it.
    [[nodiscard]] std::string_view text(std::string_view key) const;
    [[nodiscard]] bool flag(std::string_view key, bool standard) const;
    /// Returns the words of a list, which are separated by blanks and commas, or quoted. "%S" stands for the
    /// share's name.
    [[nodiscard]] std::vector<std::string> list(std::string_view key) const;

  private:
    [[nodiscard]] ServerSetting setting(std::string_view key) const;

    std::string name_;
    std::vector<const SMBShare*> sections_;
    const std::vector<const SMBShare*>* globals_;
};

/// The shares of smb.conf by name, as the server reads it. It refers to the model, which must outlive it.
class ServerShares {
  public:
    explicit ServerShares(const SMBConf& conf);

    /// Returns the share with that name, whatever the case; null when there is none.
    [[nodiscard]] const ServerShare* find(std::string_view name) const;

    /// The settings in "global".
    [[nodiscard]] const ServerShare& global() const { return global_; }

  private:
    std::vector<const SMBShare*> globals_;
    ServerShare global_{"global", {}, &globals_};
    std::map<std::string, ServerShare, std::less<>> shares_; ///< by name in lower case
};

/// True when a list of users names the account, by its own name or, with "@" or "+", by one of its groups
/// (smb.conf(5), "invalid users"). Network groups ("&") match nobody.
[[nodiscard]] bool isNamed(const std::vector<std::string>& list, const Account& account, Accounts& accounts);

} // namespace accesscheck
