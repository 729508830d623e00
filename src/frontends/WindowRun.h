#pragma once

#include "platform/posix/Status.h"

#include <string>

namespace frontend {

class Application;
class OneWindow;

/// Where the shares are reached, as the window says it.
struct ServerLine {
    std::string address; ///< "smb://HOST:PORT/", empty where nothing serves them
    std::string state;   ///< a sentence on it, empty where the computer itself says one
    bool hasFailed = false;
};

/// The runs that need the window. A program that has none hands them to the one that has.
class WindowRun {
  public:
    virtual ~WindowRun() = default;

    /// Shows the window until the application has ended; returns the exit status. `only` (may be null) says
    /// when others ask for it. Fails where there is no display.
    [[nodiscard]] virtual platform::Result<int> show(Application& application, const ServerLine& server,
                                                     const OneWindow* only) = 0;

    /// Says on screen, where there is one, why the window cannot be had: who starts it from a menu sees no
    /// terminal.
    virtual void showFailure(const std::string& text) = 0;

    /// Writes a picture of every page into `folder`. Fails when one cannot be written.
    [[nodiscard]] virtual platform::Status takeSnapshots(Application& application,
                                                         const std::string& folder) = 0;
};

} // namespace frontend
