#pragma once

#include "platform/security/HelperAuthority.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// The authority of the system host. sudo decides, checks the password, and remembers it as long as it is
/// configured to. The password is asked for in the presenter's administrator dialog, passed to sudo through a
/// pipe, and wiped from memory at once. Every sudo is a child of this process, because without a terminal
/// sudo remembers by the parent process whom it has let in.
///
/// One helper serves the runs of one action only. Only sudo knows when the right that it gave has ended, and
/// a helper that waited for the next action could keep root's rights longer than that. If sudo remembers no
/// password (timestamp_timeout=0), the password starts the helper at once, and the right lasts as long as the
/// helper: to the end of the action.
class SudoAuthority : public HelperAuthority {
  public:
    /// How many passwords the user may try before a request fails.
    static constexpr int tries = 3;

    static constexpr const char* defaultSudo = "/usr/bin/sudo";

    /// Runs tools on this computer itself, with the program `helper` started by the program `sudo`. `prefix`
    /// is that of Brindle's own files (SystemFiles), for tests.
    explicit SudoAuthority(std::string helper, const std::string& prefix = {},
                           std::string sudo = defaultSudo);

    [[nodiscard]] std::unique_ptr<AuthorizationSession> createSession(OSStatus* status) override;
    /// Returns errAuthorizationCanceled when the user cancels, and errAuthorizationDenied when no password
    /// was accepted, the user may not use sudo, there is no sudo, or the helper must not be run. Where the
    /// user may be asked, an alert or the dialog itself says why.
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
    std::optional<bool> helperIsFree_; ///< whether sudo runs the helper without a password; checked once
    std::string complaint_;            ///< sudo's last error message
};

} // namespace platform
