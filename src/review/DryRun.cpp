#include "review/DryRun.h"

#include "platform/foundation/Host.h"
#include "platform/host/DirectoryAccounts.h"
#include "platform/security/Authority.h"
#include "review/WorkingCopy.h"

#include <memory>
#include <utility>

namespace review {

namespace {

/// Requests rights from the real authority, and carries runs out on the copies.
class DryRunAuthority : public platform::Authority {
  public:
    DryRunAuthority(std::shared_ptr<platform::Authority> real, std::shared_ptr<WorkingCopy> copy)
        : real_(std::move(real)), copy_(std::move(copy)) {}

    [[nodiscard]] std::unique_ptr<platform::AuthorizationSession> createSession(OSStatus* status) override {
        return real_->createSession(status);
    }

    [[nodiscard]] OSStatus copyRights(platform::AuthorizationSession& session,
                                      const AuthorizationRights& rights, AuthorizationFlags flags) override {
        return real_->copyRights(session, rights, flags);
    }

    void destroyRights(platform::AuthorizationSession& session) override { real_->destroyRights(session); }

    [[nodiscard]] OSStatus execute(platform::AuthorizationSession& session, const std::string& tool,
                                   std::span<const std::string> arguments, std::string* output) override {
        const bool isGranted =
            real_->copyRights(session, {}, kAuthorizationFlagDefaults) == errAuthorizationSuccess;
        return isGranted ? copy_->execute(tool, arguments, output) : errAuthorizationDenied;
    }

  private:
    std::shared_ptr<platform::Authority> real_;
    std::shared_ptr<WorkingCopy> copy_;
};

} // namespace

platform::Result<platform::Services> servicesOnCopies(const platform::Services& real, const std::string& root,
                                                      platform::Status* directory) {
    const platform::Host host(real); // the copies are made from this host
    bool lacksDirectory = false;
    auto copy = WorkingCopy::make(&lacksDirectory);
    if (!copy.isOk() && lacksDirectory) {
        *directory = copy.status();
        copy = WorkingCopy::makeWithUnreadableDirectory(*directory);
    }
    if (!copy.isOk()) {
        return copy.status();
    }
    platform::Services services = (*copy)->services();
    if (auto status = (*copy)->copyHistory(&services.historyFile); !status.isOk()) {
        return status;
    }
    (*copy)->checkPasswordsOf(root);
    services.authority = std::make_shared<DryRunAuthority>(real.authority, *copy);
    // Accounts that the dry run makes have names too.
    services.accountNames = std::make_shared<platform::DirectoryAccounts>((*copy)->storeFile());
    return services;
}

} // namespace review
