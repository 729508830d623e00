#pragma once

#include "platform/foundation/Services.h"
#include "platform/security/Authority.h"
#include "platform/security/HelperSession.h"

#include <string>
#include <utility>
#include <vector>

namespace platform {

/// An authority whose runs are carried out by a helper that serves run after run. The directory changes of
/// the runs are pending until they are settled.
class HelperAuthority : public Authority, public PendingWrites {
  public:
    void settle() override;
    void takeBack() override;
    void endAction() override;

  protected:
    /// `command` starts the helper.
    explicit HelperAuthority(std::vector<std::string> command) : helper_(std::move(command)) {}

    [[nodiscard]] HelperSession& helper() { return helper_; }

  private:
    HelperSession helper_;
};

} // namespace platform
