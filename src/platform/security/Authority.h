#pragma once

#include "platform/security/AuthorizationTypes.h"

#include <memory>
#include <span>
#include <string>

namespace platform {

/// One authorization session. An authority derives a class with its own state from it.
class AuthorizationSession {
  public:
    virtual ~AuthorizationSession() = default;
};

/// Grants administrator rights and runs tools with them. Implemented by sudo, by the user's consent, and by
/// tests.
class Authority {
  public:
    virtual ~Authority() = default;

    /// Returns a new session, or null with `*status` set to an error.
    [[nodiscard]] virtual std::unique_ptr<AuthorizationSession> createSession(OSStatus* status) = 0;
    /// Grants `rights` or returns an error. Asks the user (with the presenter's administrator dialog) only
    /// with kAuthorizationFlagInteractionAllowed.
    [[nodiscard]] virtual OSStatus copyRights(AuthorizationSession& session,
                                              const AuthorizationRights& rights,
                                              AuthorizationFlags flags) = 0;
    /// Ends the session's rights. The caller destroys the session afterwards.
    virtual void destroyRights(AuthorizationSession& session) = 0;
    /// Runs `tool` to its end. On success `*output` (unless null) receives its standard output. The result
    /// says whether the tool was started, not how it ended.
    [[nodiscard]] virtual OSStatus execute(AuthorizationSession& session, const std::string& tool,
                                           std::span<const std::string> arguments, std::string* output) = 0;
};

} // namespace platform
