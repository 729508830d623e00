#pragma once

#include "platform/foundation/Computer.h"
#include "platform/samba/ServerState.h"

#include <string>
#include <utility>

namespace platform {

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
    /// `helper` is the file of brindle-helper.
    explicit SystemComputer(std::string helper) : helper_(std::move(helper)) {}

    [[nodiscard]] std::string whatIsMissing() const override;
    [[nodiscard]] ServerLine smbServer() const override;
    [[nodiscard]] std::string afpServerLine() const override;
    [[nodiscard]] std::string whyNoPublicFolder(const std::string& user) const override;

  private:
    std::string helper_;
};

} // namespace platform
