// brindle-window: the application with its window. brindle executes this program when a window is wanted, so
// that other modes start without loading the window's libraries.

#include "frontends/Application.h"
#include "frontends/NSApplicationMain.h"
#include "frontends/OneWindow.h"
#include "frontends/WindowRun.h"
#include "frontends/qt/QtFrontend.h"

#include <functional>
#include <string>

namespace {

using frontend::Application;
using frontend::QtFrontend;
using platform::Status;

Status loadInto(QtFrontend& window, Application& application) {
    application.setPresenter(window.presenter());
    Status status = application.load();
    if (status.isOk()) {
        window.useReviewer(*application.reviewer());
        window.useHistory(application.history());
        window.useDoctor(application.examinedHost());
    }
    return status;
}

class QtWindowRun : public frontend::WindowRun {
  public:
    explicit QtWindowRun(char** argv) : argv_(argv) {}

    platform::Result<int> show(Application& application, const frontend::ShareServer& server,
                               const frontend::OneWindow* only) override {
        if (!QtFrontend::displayIsThere()) {
            return Status::failure("there is no display to open the window on", "",
                                   "set DISPLAY or WAYLAND_DISPLAY, or use --print or --script");
        }
        int argc = 1; // Qt gets none of our options
        QtFrontend window(argc, argv_, QtFrontend::Manner::Interactive);
        if (Status status = loadInto(window, application); !status.isOk()) {
            return status;
        }
        window.useServer(server);
        if (only != nullptr) {
            window.useListener(
                only->listener(),
                [only](const std::function<void(const std::string&)>& raise) { only->answer(raise); });
        }
        const int exitStatus = window.run([&] { application.launch(); });
        application.end();
        return exitStatus;
    }

    void showFailure(const std::string& text) override {
        int argc = 1;
        QtFrontend::showFailure(argc, argv_, text);
    }

    Status takeSnapshots(Application& application, const std::string& folder) override {
        int argc = 1;
        QtFrontend window(argc, argv_, QtFrontend::Manner::Silent);
        if (Status status = loadInto(window, application); !status.isOk()) {
            return status;
        }
        application.launch();
        Status status = window.takeSnapshots(folder);
        application.end();
        return status;
    }

  private:
    char** argv_;
};

} // namespace

int main(int argc, char** argv) {
    QtWindowRun window(argv);
    return NSApplicationMain(argc, argv, &window);
}
