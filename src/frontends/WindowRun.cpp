#include "frontends/WindowRun.h"

#include "frontends/Application.h"
#include "frontends/OneWindow.h"

#ifdef BRINDLE_HAS_QT
#include "frontends/qt/QtFrontend.h"
#endif

namespace frontend {

using platform::Status;

#ifdef BRINDLE_HAS_QT

namespace {

Status loadInto(QtFrontend& window, Application& application) {
    application.setPresenter(window.presenter());
    Status status = application.load();
    if (status.isOk()) {
        window.useReviewer(*application.reviewer());
        window.useHistory(application.history());
        window.useDoctor(application.patient());
    }
    return status;
}

} // namespace

platform::Result<int> runWindow(Application& application, char** argv, const ServerLine& server,
                                const OneWindow* only) {
    if (!QtFrontend::displayIsThere()) {
        return Status::failure("there is no display to open the window on", "",
                               "set DISPLAY or WAYLAND_DISPLAY, or use --print or --script");
    }
    int argc = 1; // the options are ours alone
    QtFrontend window(argc, argv, QtFrontend::Manner::Interactive);
    if (Status status = loadInto(window, application); !status.isOk()) {
        return status;
    }
    window.useServer(server.address, server.state, server.hasFailed);
    if (only != nullptr) {
        window.useListener(only->listener(), [only](const std::function<void(const std::string&)>& raise) {
            only->answer(raise);
        });
    }
    const int exitStatus = window.run([&] { application.launch(); });
    application.end();
    return exitStatus;
}

Status takeSnapshots(Application& application, char** argv, const std::string& folder) {
    int argc = 1;
    QtFrontend window(argc, argv, QtFrontend::Manner::Silent);
    if (Status status = loadInto(window, application); !status.isOk()) {
        return status;
    }
    application.launch();
    Status status = window.takeSnapshots(folder);
    application.end();
    return status;
}

void showStartFailure(const std::string& text, char** argv) {
    int argc = 1;
    QtFrontend::showFailure(argc, argv, text);
}

#else

void showStartFailure(const std::string& /*text*/, char** /*argv*/) {}

platform::Result<int> runWindow(Application& /*application*/, char** /*argv*/, const ServerLine& /*server*/,
                                const OneWindow* /*only*/) {
    return Status::failure("this build has no window", "",
                           "install Qt 6 Widgets and build again, or use --print or --script");
}

Status takeSnapshots(Application& /*application*/, char** /*argv*/, const std::string& /*folder*/) {
    return Status::failure("this build has no window to take pictures of", "",
                           "install Qt 6 Widgets and build again");
}

#endif

} // namespace frontend
