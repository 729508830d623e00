#pragma once

#include "platform/appkit/Presenter.h"

namespace platform {

/// The front-end of a run in which nobody can see or answer anything. It answers an alert with its alternate
/// button, or its only one, which is the one that changes nothing in the alerts of the start-up; in an
/// editor's question it would not be. Everything else is refused.
class SilentPresenter : public Presenter {
  public:
    [[nodiscard]] AlertAnswer runAlert(const Alert& alert) override;
    [[nodiscard]] std::optional<std::string> runOpenPanel(const OpenPanelRequest& request) override;
    [[nodiscard]] std::optional<AdministratorAnswer>
    runAdministratorDialog(const AdministratorRequest& request) override;

    void beep() override {}

    void openAddress(const std::string& /*address*/) override {}

    /// The timer never fires: nothing that it would animate is visible.
    [[nodiscard]] TimerId startTimer(double interval, std::function<void()> fire) override;

    void stopTimer(TimerId /*timer*/) override {}

    void interfaceDidLoad(Interface& /*interface*/) override {}

    void windowVisibilityDidChange(NSWindow& /*window*/) override {}

    void editWasRefused(const NSTextField& /*field*/, const std::string& /*errorText*/) override {}

    void applicationDidTerminate() override {}

    void toolWillRun(const std::string& /*tool*/, std::span<const std::string> /*arguments*/) override {}

    void toolDidWrite(std::string_view /*output*/) override {}

  private:
    TimerId lastTimer_ = 0;
};

} // namespace platform
