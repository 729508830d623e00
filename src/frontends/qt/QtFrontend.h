#pragma once

#include "access/Doctor.h"
#include "frontends/ShareServer.h"
#include "platform/appkit/Presenter.h"
#include "platform/posix/Status.h"

#include <functional>
#include <memory>
#include <string>

namespace review {
class History;
class Reviewer;
} // namespace review

namespace frontend {

/// The window front-end: the Qt application object, and the presenter that renders every interface file that
/// is loaded. Only one per process at a time, main thread only. Make it before the interface is loaded:
///
///     platform::Host host(services);
///     QtFrontend frontend(argc, argv, QtFrontend::Manner::Interactive);
///     host.setPresenter(frontend.presenter());
///     auto interface = platform::Interface::load(...);
///     return frontend.run([] {
///         NSApp().mainWindow()->makeKeyAndOrderFront();
///         NSApp().finishLaunching();
///     });
///
/// It keeps no state of the system: widgets show what the control models hold, and the user's actions go to
/// the models' own operations.
class QtFrontend {
  public:
    enum class Manner {
        Interactive, ///< shows windows, asks the user
        Silent ///< for pictures: alerts are answered at once with the button that changes nothing, panels are
               ///< cancelled, nothing beeps; works without a display
    };

    /// `argc` and `argv` must live as long as the front-end; Qt removes its own options from them. With
    /// Manner::Silent and without a display, Qt's offscreen platform is used.
    QtFrontend(int& argc, char** argv, Manner manner);
    /// Destroys all windows, after which the presenter does nothing. The interfaces must still exist, unless
    /// run or takeSnapshots has returned.
    ~QtFrontend();
    QtFrontend(const QtFrontend&) = delete;
    QtFrontend& operator=(const QtFrontend&) = delete;

    /// Shows a text in its own dialog until the user closes it. Does nothing without a display. Must not be
    /// called while there is a front-end.
    static void showFailure(int& argc, char** argv, const std::string& text);

    /// For Host::setPresenter, before an interface is loaded.
    [[nodiscard]] std::shared_ptr<platform::Presenter> presenter() const;

    /// Makes the main window ask before an action with a warning, and offer the reviewer's other functions.
    /// Call it after the main interface was loaded; `reviewer` must outlive the windows.
    void useReviewer(review::Reviewer& reviewer);

    /// Lets the main window take changes back and show the history. Call it after useReviewer; `history` must
    /// outlive the windows.
    void useHistory(const review::History& history);

    /// Makes the main window say where the shares can be reached.
    void useServer(ShareServer server);

    /// Gives the main window the menu that shows who may use what, what is wrong with the computer and who is
    /// connected. Call it after useReviewer.
    void useDoctor(accesscheck::ExaminedHost host);

    /// Calls `answer` whenever `descriptor` becomes readable. Its argument `raise` brings the main window to
    /// the front; it takes the desktop's token of the start that asked for it, which may be empty.
    void useListener(int descriptor,
                     std::function<void(const std::function<void(const std::string& token)>& raise)> answer);

    /// Calls `launch`, which shows the main window, as the first event, and runs the event loop until the
    /// application has terminated. Returns the exit status. All windows are destroyed when it returns, so the
    /// interface may be destroyed.
    [[nodiscard]] int run(const std::function<void()>& launch);

    /// Writes a PNG of every page of the loaded interfaces into `folder`, which is created if necessary. The
    /// files have English names (shares.png, shares-drawer.png, afp-general.png, the sheets, about.png). Call
    /// it after the launch; all windows are destroyed when it returns. Fails at the first picture that cannot
    /// be written.
    [[nodiscard]] platform::Status takeSnapshots(const std::string& folder);

    /// True when a window can be shown: there is a display, or the environment selects a Qt platform.
    [[nodiscard]] static bool displayIsThere();

  private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

} // namespace frontend
