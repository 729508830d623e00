#pragma once

#include "frontends/ShareServer.h"
#include "platform/posix/Status.h"

#include <string>

namespace frontend {

class Application;
class OneWindow;

/// The modes that need the window. Only brindle-window implements it.
class WindowRun {
  public:
    virtual ~WindowRun() = default;

    /// Shows the window until the application has ended, and returns the exit status. `only` (may be null)
    /// reports when another process asks for the window. Fails when there is no display.
    [[nodiscard]] virtual platform::Result<int> show(Application& application, const ShareServer& server,
                                                     const OneWindow* only) = 0;

    /// Shows on screen, when there is one, why the window cannot be opened: a user who starts it from a menu
    /// sees no terminal.
    virtual void showFailure(const std::string& text) = 0;

    /// Writes a picture of every page into `folder`. Fails when a picture cannot be written.
    [[nodiscard]] virtual platform::Status takeSnapshots(Application& application,
                                                         const std::string& folder) = 0;
};

} // namespace frontend
