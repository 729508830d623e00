#include "platform/security/ConsentAuthority.h"

#include "platform/appkit/Presenter.h"
#include "platform/foundation/Host.h"
#include "platform/security/HelperProtocol.h"

#include <optional>
#include <utility>

namespace platform {

namespace {

class ConsentSession : public AuthorizationSession {
  public:
    [[nodiscard]] bool holds() const {
        if (!lastUse_) {
            return false;
        }
        const double age = Host::current().clock().now() - *lastUse_;
        return age >= 0 &&
               age <= ConsentAuthority::consentSeconds; // setting the clock back ends the consent too
    }

    void use() { lastUse_ = Host::current().clock().now(); }

    void forget() { lastUse_.reset(); }

  private:
    std::optional<double> lastUse_;
};

ConsentSession& consentOf(AuthorizationSession& session) {
    return dynamic_cast<ConsentSession&>(session);
}

} // namespace

ConsentAuthority::ConsentAuthority(const std::string& helper, const std::string& rootFolder)
    : ConsentAuthority({helper, "--root", rootFolder}) {}

ConsentAuthority::ConsentAuthority(std::vector<std::string> command) : HelperAuthority(std::move(command)) {}

std::unique_ptr<AuthorizationSession> ConsentAuthority::createSession(OSStatus* status) {
    *status = errAuthorizationSuccess;
    return std::make_unique<ConsentSession>();
}

OSStatus ConsentAuthority::copyRights(AuthorizationSession& session, const AuthorizationRights& /*rights*/,
                                      AuthorizationFlags flags) {
    ConsentSession& consent = consentOf(session);
    if (consent.holds()) {
        return errAuthorizationSuccess;
    }
    if ((flags & kAuthorizationFlagInteractionAllowed) == 0) {
        return errAuthorizationInteractionNotAllowed;
    }
    settle(); // other programs should not have to wait for the user
    helper().end();
    if (!Host::current().presenter().runAdministratorDialog({})) {
        return errAuthorizationCanceled;
    }
    consent.use();
    return errAuthorizationSuccess;
}

void ConsentAuthority::destroyRights(AuthorizationSession& session) {
    consentOf(session).forget();
    settle();
    helper().end();
}

OSStatus ConsentAuthority::execute(AuthorizationSession& session, const std::string& tool,
                                   std::span<const std::string> arguments, std::string* output) {
    ConsentSession& consent = consentOf(session);
    if (!consent.holds()) {
        return errAuthorizationDenied;
    }
    consent.use();
    if (!waitsForCommit(tool)) {
        settle(); // other tools read the directory, or take so long that nobody should have to wait for them
    }
    return helper().run(tool, arguments, output);
}

} // namespace platform
