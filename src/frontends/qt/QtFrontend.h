#pragma once

#include "access/Doctor.h"
#include "platform/appkit/Presenter.h"
#include "platform/posix/Status.h"

#include <functional>
#include <memory>
#include <string>

namespace review {
class History;
class Reviewer;
} // namespace review

/// The window front-end: the Qt application object, and the presenter that renders every interface file that
/// is loaded. One a process at a time, main thread only. Made before the interface is loaded:
///
///     platform::Host host(services);
///     QtFrontend frontend(argc, argv, QtFrontend::Manner::Interactive);
///     host.setPresenter(frontend.presenter());
///     auto interface = platform::Interface::load(...);
///     return frontend.run([] { NSApp().finishLaunching(); });
///
/// It keeps no state of the system: what the widgets show is read from the control models, and what a user
/// does goes to the models' own operations.
class QtFrontend {
  public:
    enum class Manner {
        Interactive, ///< shows windows, asks the user
        Silent ///< for pictures: alerts are answered at once by the button that changes nothing, panels are
               ///< cancelled, nothing beeps; works without a display
    };

    /// `argc` and `argv` must live as long as the front-end; Qt takes its own options out of them. Where
    /// Silent is asked for and there is no display, Qt's offscreen platform is used.
    QtFrontend(int& argc, char** argv, Manner manner);
    /// Takes all windows down, for which the interfaces must still be there unless run or takeSnapshots has
    /// returned; the presenter does nothing any more.
    ~QtFrontend();
    QtFrontend(const QtFrontend&) = delete;
    QtFrontend& operator=(const QtFrontend&) = delete;

    /// Shows a text in a dialog of its own until it is read; nothing without a display. While there is no
    /// front-end.
    static void showFailure(int& argc, char** argv, const std::string& text);

    /// For Host::setPresenter, before an interface is loaded.
    [[nodiscard]] std::shared_ptr<platform::Presenter> presenter() const;

    /// Has the main window ask before an action that holds a warning, and offer what a reviewer can tell.
    /// After the main interface was loaded; `reviewer` outlives the windows.
    void useReviewer(review::Reviewer& reviewer);

    /// Has the main window take changes back and show the history. After useReviewer; `history` outlives the
    /// windows.
    void useHistory(const review::History& history);

    /// Has the main window say where the shares are reached: `address` is "smb://HOST:PORT/", or empty where
    /// nothing serves them, and `state` says why; `hasFailed`: something should have.
    void useServer(const std::string& address, const std::string& state, bool hasFailed);

    /// Has the main window say who may use what, what is wrong with the computer and who is connected. After
    /// useReviewer.
    void useDoctor(accesscheck::Patient patient);

    /// Whenever `descriptor` can be read, calls `answer` with what brings the main window to the front. That
    /// takes the desktop's token for the start that asked for it; it may be empty.
    void useListener(int descriptor,
                     std::function<void(const std::function<void(const std::string& token)>& raise)> answer);

    /// Shows the main window, calls `launch` as the first event, and runs the event loop until the
    /// application has terminated. Returns the exit status. All windows are gone when it returns, so the
    /// interface may be destroyed.
    [[nodiscard]] int run(const std::function<void()>& launch);

    /// Writes a PNG of every page of the loaded interfaces, named in English after what it shows (shares.png,
    /// shares-drawer.png, afp-general.png, the sheets, about.png), into `folder`, which is made when it is
    /// not there. To be called after the launch; all windows are gone when it returns. Fails at the first
    /// picture that cannot be written.
    [[nodiscard]] platform::Status takeSnapshots(const std::string& folder);

    /// True where a window can be shown: a display is there, or the environment picks a Qt platform.
    [[nodiscard]] static bool displayIsThere();

  private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};
