#pragma once

#include "platform/appkit/SilentPresenter.h"
#include "platform/security/Authority.h"
#include "review/Plan.h"
#include "review/WorkingCopy.h"

#include <memory>
#include <utility>

namespace review {

/// The authority of a plan: grants every right without asking and carries runs out on the working copy.
class PlanAuthority : public platform::Authority {
  public:
    explicit PlanAuthority(std::shared_ptr<WorkingCopy> copy) : copy_(std::move(copy)) {}

    [[nodiscard]] std::unique_ptr<platform::AuthorizationSession> createSession(OSStatus* status) override;
    [[nodiscard]] OSStatus copyRights(platform::AuthorizationSession& session,
                                      const AuthorizationRights& rights, AuthorizationFlags flags) override;
    void destroyRights(platform::AuthorizationSession& session) override;
    [[nodiscard]] OSStatus execute(platform::AuthorizationSession& session, const std::string& tool,
                                   std::span<const std::string> arguments, std::string* output) override;

  private:
    std::shared_ptr<WorkingCopy> copy_;
};

/// The presenter of a plan: shows nothing, records alerts and runs, presses "Yes" in an alert that has such a
/// button and otherwise the default button, and cancels open panels.
class PlanPresenter : public platform::SilentPresenter {
  public:
    explicit PlanPresenter(Plan* plan) : plan_(*plan) {}

    [[nodiscard]] platform::AlertAnswer runAlert(const platform::Alert& alert) override;
    [[nodiscard]] std::optional<platform::AdministratorAnswer>
    runAdministratorDialog(const platform::AdministratorRequest& request) override;
    void toolWillRun(const std::string& tool, std::span<const std::string> arguments) override;
    void toolDidWrite(std::string_view output) override;

  private:
    Plan& plan_;
};

/// A log that drops everything, because nothing in a plan really happens.
class SilentLog : public platform::Log {
  public:
    void write(std::string_view /*text*/) override {}
};

} // namespace review
