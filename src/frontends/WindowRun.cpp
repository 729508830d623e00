#include "frontends/WindowRun.h"

#include "frontends/Application.h"

#include <iostream>

#ifdef BRINDLE_HAS_QT
#include "frontends/qt/QtFrontend.h"
#endif

namespace frontend {

#ifdef BRINDLE_HAS_QT

int runWindow(Application& application, char** argv) {
    if (!QtFrontend::displayIsThere()) {
        std::cerr
            << "brindle: there is no display to open the window on: set DISPLAY or WAYLAND_DISPLAY, or use "
               "--print or --script\n";
        return 1;
    }
    int argc = 1; // the options are ours alone
    QtFrontend window(argc, argv, QtFrontend::Manner::Interactive);
    application.setPresenter(window.presenter());
    application.load();
    window.useReviewer(*application.reviewer());
    window.useHistory(application.history());
    const int status = window.run([&] { application.launch(); });
    application.end();
    return status;
}

void showStartFailure(const std::string& text, char** argv) {
    int argc = 1;
    QtFrontend::showFailure(argc, argv, text);
}

int takeSnapshots(Application& application, char** argv, const std::string& folder) {
    int argc = 1;
    QtFrontend window(argc, argv, QtFrontend::Manner::Silent);
    application.setPresenter(window.presenter());
    application.load();
    window.useReviewer(*application.reviewer());
    window.useHistory(application.history());
    application.launch();
    std::string error;
    const bool taken = window.takeSnapshots(folder, error);
    application.end();
    if (!taken) {
        std::cerr << "brindle: " << error << '\n';
    }
    return taken ? 0 : 1;
}

#else

void showStartFailure(const std::string& /*text*/, char** /*argv*/) {}

int runWindow(Application& /*application*/, char** /*argv*/) {
    std::cerr << "brindle: this build has no window: install Qt 6 Widgets and build again, or use --print or "
                 "--script\n";
    return 1;
}

int takeSnapshots(Application& /*application*/, char** /*argv*/, const std::string& /*folder*/) {
    std::cerr
        << "brindle: this build has no window to take pictures of: install Qt 6 Widgets and build again\n";
    return 1;
}

#endif

} // namespace frontend
