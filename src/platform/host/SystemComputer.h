#pragma once

#include "platform/foundation/Computer.h"
#include "platform/samba/ServerState.h"

#include <memory>
#include <string>
#include <utility>

namespace platform {

struct AccountLimits;
class LocalDomain;

/// The accounts in the domain's files with numbers below the limits; see Computer::systemAccounts.
[[nodiscard]] SystemAccounts systemAccountsOf(const LocalDomain& domain, const AccountLimits& limits);

/// The programs on the computer that Brindle works with.
struct ComputersPrograms {
    std::string smbd;          ///< empty: not installed
    bool hasAccountTools;      ///< those of shadow-utils
    std::string helperProblem; ///< why nothing can be changed; empty when it can
};

/// The text for a computer with these programs; see Computer::whatIsMissing.
[[nodiscard]] std::string missingText(const ComputersPrograms& programs);

/// The text for an smbd in this state; see Computer::smbServer.
[[nodiscard]] std::string serverText(const ServerState& state);

/// This computer itself.
class SystemComputer : public Computer {
  public:
    /// `helper` is the path of brindle-helper; `domain` holds the computer's accounts.
    SystemComputer(std::string helper, std::shared_ptr<const LocalDomain> domain)
        : helper_(std::move(helper)), domain_(std::move(domain)) {}

    [[nodiscard]] std::string whatIsMissing() const override;
    [[nodiscard]] ServerLine smbServer() const override;
    [[nodiscard]] std::string afpServerLine() const override;
    [[nodiscard]] std::string whyNoPublicFolder(const std::string& user) const override;
    [[nodiscard]] SystemAccounts systemAccounts() const override;

  private:
    std::string helper_;
    std::shared_ptr<const LocalDomain> domain_;
};

} // namespace platform
