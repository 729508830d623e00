#include "frontends/cli/SilentPresenter.h"

namespace frontend {

platform::AlertAnswer SilentPresenter::runAlert(const platform::Alert& alert) {
    return alert.alternateButton ? platform::AlertAnswer::Alternate : platform::AlertAnswer::Default;
}

std::optional<std::string> SilentPresenter::runOpenPanel(const platform::OpenPanelRequest& /*request*/) {
    return std::nullopt;
}

std::optional<platform::AdministratorAnswer>
SilentPresenter::runAdministratorDialog(const platform::AdministratorRequest& /*request*/) {
    return std::nullopt;
}

platform::TimerId SilentPresenter::startTimer(double /*interval*/, std::function<void()> /*fire*/) {
    return ++lastTimer_; // nothing that it would animate is visible
}

} // namespace frontend
