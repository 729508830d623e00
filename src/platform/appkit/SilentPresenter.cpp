#include "platform/appkit/SilentPresenter.h"

namespace platform {

AlertAnswer SilentPresenter::runAlert(const Alert& alert) {
    return alert.alternateButton ? AlertAnswer::Alternate : AlertAnswer::Default;
}

std::optional<std::string> SilentPresenter::runOpenPanel(const OpenPanelRequest& /*request*/) {
    return std::nullopt;
}

std::optional<AdministratorAnswer>
SilentPresenter::runAdministratorDialog(const AdministratorRequest& /*request*/) {
    return std::nullopt;
}

TimerId SilentPresenter::startTimer(double /*interval*/, std::function<void()> /*fire*/) {
    return ++lastTimer_;
}

} // namespace platform
