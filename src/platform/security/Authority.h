#pragma once

#include "platform/security/AuthorizationTypes.h"

#include <memory>
#include <span>
#include <string>

namespace platform {

/// One authorization session. An authority derives its own state from it.
class AuthorizationSession {
  public:
    virtual ~AuthorizationSession() = default;
};

/// Decides on administrator rights and starts tools with them: sudo, the user's consent, or a test.
class Authority {
  public:
    virtual ~Authority() = default;

    /// A new session, or null with `*status` set to an error.
    [[nodiscard]] virtual std::unique_ptr<AuthorizationSession> createSession(OSStatus* status) = 0;
    /// Grants `rights` or returns an error. Only with kAuthorizationFlagInteractionAllowed may the user be
    /// asked (through the presenter's administrator dialog).
    [[nodiscard]] virtual OSStatus copyRights(AuthorizationSession& session,
                                              const AuthorizationRights& rights,
                                              AuthorizationFlags flags) = 0;
    /// The session ends and its rights with it. The session is destroyed afterwards.
    virtual void destroyRights(AuthorizationSession& session) = 0;
    /// Runs `tool` to its end. On success `*output` (when not null) is what it wrote to its standard output.
    /// Returns whether the tool was started, not how it ended.
    [[nodiscard]] virtual OSStatus execute(AuthorizationSession& session, const std::string& tool,
                                           std::span<const std::string> arguments, std::string* output) = 0;
};

} // namespace platform
