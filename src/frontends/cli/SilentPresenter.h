#pragma once

#include "platform/appkit/Presenter.h"

namespace frontend {

/// The front-end of a run that only prints, where nobody can see or answer anything. It answers an alert with
/// the button that changes nothing: its alternate button, or its only one. Everything else is refused.
class SilentPresenter : public platform::Presenter {
  public:
    [[nodiscard]] platform::AlertAnswer runAlert(const platform::Alert& alert) override;
    [[nodiscard]] std::optional<std::string> runOpenPanel(const platform::OpenPanelRequest& request) override;
    [[nodiscard]] std::optional<platform::AdministratorAnswer>
    runAdministratorDialog(const platform::AdministratorRequest& request) override;

    void beep() override {}

    void openAddress(const std::string& /*address*/) override {}

    [[nodiscard]] platform::TimerId startTimer(double interval, std::function<void()> fire) override;

    void stopTimer(platform::TimerId /*timer*/) override {}

    void interfaceDidLoad(platform::Interface& /*interface*/) override {}

    void windowVisibilityDidChange(NSWindow& /*window*/) override {}

    void editWasRefused(const NSTextField& /*field*/, const std::string& /*errorText*/) override {}

    void applicationDidTerminate() override {}

    void toolWillRun(const std::string& /*tool*/, std::span<const std::string> /*arguments*/) override {}

    void toolDidWrite(std::string_view /*output*/) override {}

  private:
    platform::TimerId lastTimer_ = 0;
};

} // namespace frontend
