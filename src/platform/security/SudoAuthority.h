#pragma once

#include "platform/security/Authority.h"
#include "platform/security/HelperLauncher.h"

#include <string>

namespace platform {

/// The authority of the system host: sudo decides, checks the password and remembers it for as long as it is
/// set up to. The password is asked for in the presenter's administrator dialog, reaches sudo over a pipe,
/// and is wiped from memory at once.
class SudoAuthority : public Authority {
  public:
    /// How often the user may try a password before a request fails.
    static constexpr int tries = 3;

    /// Tools are run by the program `helper`, started by the program `sudo`, on this computer itself.
    explicit SudoAuthority(const std::string& helper, std::string sudo = "/usr/bin/sudo");

    [[nodiscard]] std::unique_ptr<AuthorizationSession> createSession(OSStatus* status) override;
    /// errAuthorizationCanceled when the user says no, errAuthorizationDenied when no password was taken or
    /// there is no sudo.
    [[nodiscard]] OSStatus copyRights(AuthorizationSession& session, const AuthorizationRights& rights,
                                      AuthorizationFlags flags) override;
    void destroyRights(AuthorizationSession& session) override;
    [[nodiscard]] OSStatus execute(AuthorizationSession& session, const std::string& tool,
                                   std::span<const std::string> arguments, int* output) override;
    void outputHasEnded() override;

  private:
    [[nodiscard]] OSStatus askForPassword() const;

    std::string helper_;
    std::string sudo_;
    HelperLauncher launcher_;
};

} // namespace platform
