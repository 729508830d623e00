#pragma once

#include "platform/foundation/Computer.h"
#include "platform/samba/ServerState.h"

#include <memory>
#include <string>
#include <utility>

namespace platform {

struct AccountLimits;
class LocalDomain;

/// The accounts of the domain's files below the limits; see Computer::systemAccounts.
[[nodiscard]] SystemAccounts systemAccountsOf(const LocalDomain& domain, const AccountLimits& limits);

/// The programs of a computer that Brindle works with.
struct ComputersPrograms {
    std::string smbd;          ///< empty: not installed
    bool hasAccountTools;      ///< shadow-utils
    std::string helperProblem; ///< why nothing can be changed; empty when it can
};

/// What is said of a computer with these programs; see Computer::whatIsMissing.
[[nodiscard]] std::string missingText(const ComputersPrograms& programs);

/// What is said of an smbd in this state; see Computer::smbServer.
[[nodiscard]] std::string serverText(const ServerState& state);

/// This computer itself.
class SystemComputer : public Computer {
  public:
    /// `helper` is the file of brindle-helper, and `domain` has the computer's accounts.
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
