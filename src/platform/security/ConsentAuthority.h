#pragma once

#include "platform/security/HelperAuthority.h"

#include <string>
#include <vector>

namespace platform {

/// The authority of the embedded host: nothing beyond the user's own reach is touched, so that the user's
/// consent is all that is needed. It is asked for in the presenter's administrator dialog, without a
/// password, and holds for five minutes (of the host's clock) after it was given or last used for a tool run.
/// Merely asking whether it holds does not prolong it.
///
/// One helper serves the runs of all actions for as long as the consent holds. What its runs of the
/// directory's tools change is one transaction, which is settled before a run of another tool, before anybody
/// is asked, and at the action's end.
class ConsentAuthority : public HelperAuthority {
  public:
    /// How long a consent holds, in seconds.
    static constexpr double consentSeconds = 300;

    /// Tools are run by the program `helper` on the root at `rootFolder`.
    ConsentAuthority(const std::string& helper, const std::string& rootFolder);
    /// They are run by a helper that `command` starts, for a session.
    explicit ConsentAuthority(std::vector<std::string> command);

    [[nodiscard]] std::unique_ptr<AuthorizationSession> createSession(OSStatus* status) override;
    /// errAuthorizationCanceled when the user says no.
    [[nodiscard]] OSStatus copyRights(AuthorizationSession& session, const AuthorizationRights& rights,
                                      AuthorizationFlags flags) override;
    void destroyRights(AuthorizationSession& session) override;
    /// errAuthorizationDenied when the consent does not hold.
    [[nodiscard]] OSStatus execute(AuthorizationSession& session, const std::string& tool,
                                   std::span<const std::string> arguments, std::string* output) override;
};

} // namespace platform
