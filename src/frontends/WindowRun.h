#pragma once

#include "platform/posix/Status.h"

#include <string>

namespace frontend {

class Application;
class OneWindow;

/// What the window says about where the shares can be reached.
struct ServerLine {
    std::string address; ///< "smb://HOST:PORT/", empty when nothing serves them
    std::string state;   ///< a sentence about the server, empty when the computer's own state is shown
    bool hasFailed = false;
};

/// The modes that need the window. Only brindle-window implements it.
class WindowRun {
  public:
    virtual ~WindowRun() = default;

    /// Shows the window until the application has ended, and returns the exit status. `only` (may be null)
    /// reports when another process asks for the window. Fails when there is no display.
    [[nodiscard]] virtual platform::Result<int> show(Application& application, const ServerLine& server,
                                                     const OneWindow* only) = 0;

    /// Shows on screen, when there is one, why the window cannot be opened: a user who starts it from a menu
    /// sees no terminal.
    virtual void showFailure(const std::string& text) = 0;

    /// Writes a picture of every page into `folder`. Fails when a picture cannot be written.
    [[nodiscard]] virtual platform::Status takeSnapshots(Application& application,
                                                         const std::string& folder) = 0;
};

} // namespace frontend
