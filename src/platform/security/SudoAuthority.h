#pragma once

#include "platform/posix/Process.h"
#include "platform/security/HelperAuthority.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// The authority of the system host: sudo decides, checks the password and remembers it for as long as it is
/// set up to. The password is asked for in the presenter's administrator dialog, reaches sudo over a pipe,
/// and is wiped from memory at once. Every sudo is a child of this process: without a terminal, that is what
/// sudo knows by whom it has let in.
///
/// One helper serves the runs of an action, and no more: only sudo knows when the right that it gave has
/// ended, and a helper that waits for the next action would be root's for longer than that. Where sudo
/// remembers no password (timestamp_timeout=0), the one that was given starts the helper at once, and the
/// right lasts as long as it: to the end of the action.
class SudoAuthority : public HelperAuthority {
  public:
    /// How often the user may try a password before a request fails.
    static constexpr int tries = 3;

    static constexpr const char* defaultSudo = "/usr/bin/sudo";

    /// Tools are run by the program `helper`, started by the program `sudo`, on this computer itself.
    /// `prefix` is that of Brindle's own files, for tests.
    explicit SudoAuthority(std::string helper, const std::string& prefix = {},
                           std::string sudo = defaultSudo);

    [[nodiscard]] std::unique_ptr<AuthorizationSession> createSession(OSStatus* status) override;
    /// errAuthorizationCanceled when the user says no; errAuthorizationDenied when no password was taken, the
    /// user may not use sudo, there is no sudo, or the helper must not be run. Says in the log or in an alert
    /// which of these it was.
    [[nodiscard]] OSStatus copyRights(AuthorizationSession& session, const AuthorizationRights& rights,
                                      AuthorizationFlags flags) override;
    void destroyRights(AuthorizationSession& session) override;
    void endAction() override;
    [[nodiscard]] OSStatus execute(AuthorizationSession& session, const std::string& tool,
                                   std::span<const std::string> arguments, std::string* output) override;

  private:
    enum class Verdict { Accepted, WrongPassword, NotAllowed, Failed };

    /// Whether sudo lets the helper run without asking for anything.
    [[nodiscard]] bool holdsRight();
    [[nodiscard]] OSStatus askForPassword();
    [[nodiscard]] Verdict check(std::string_view passwordLine);
    [[nodiscard]] bool succeeds(const std::vector<std::string>& options) const;
    [[nodiscard]] std::vector<std::string> sudoWords(const std::vector<std::string>& options) const;

    std::string helperFile_;
    std::vector<std::string> helperCommand_;
    std::string sudo_;
    std::optional<bool> helperIsFree_; ///< sudo asks for no password for it; asked once
    std::string complaint_;            ///< sudo's own last one
};

} // namespace platform
