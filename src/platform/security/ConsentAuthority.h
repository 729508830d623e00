#pragma once

#include "platform/security/HelperAuthority.h"

#include <string>
#include <vector>

namespace platform {

/// The authority of the embedded host, and of root on the system host. The user may do everything that the
/// tools do, so the user's consent is enough. It is asked for in the presenter's administrator dialog,
/// without a password, and holds for five minutes (of the host's clock) after it was given or last used for a
/// tool run. Checking whether it holds does not extend it.
///
/// One helper serves the runs of all actions as long as the consent holds and no run fails. The changes that
/// its runs of nicl make are one transaction, which is settled before a run of another tool, before the user
/// is asked something, and at the end of the action.
class ConsentAuthority : public HelperAuthority {
  public:
    /// How long a consent holds, in seconds.
    static constexpr double consentSeconds = 300;

    /// Runs tools with the program `helper` on the root at `rootFolder`.
    ConsentAuthority(const std::string& helper, const std::string& rootFolder);
    /// Runs tools with a helper that `command` starts.
    explicit ConsentAuthority(std::vector<std::string> command);

    [[nodiscard]] std::unique_ptr<AuthorizationSession> createSession(OSStatus* status) override;
    /// Returns errAuthorizationCanceled when the user declines.
    [[nodiscard]] OSStatus copyRights(AuthorizationSession& session, const AuthorizationRights& rights,
                                      AuthorizationFlags flags) override;
    void destroyRights(AuthorizationSession& session) override;
    /// Returns errAuthorizationDenied when there is no consent.
    [[nodiscard]] OSStatus execute(AuthorizationSession& session, const std::string& tool,
                                   std::span<const std::string> arguments, std::string* output) override;
};

} // namespace platform
