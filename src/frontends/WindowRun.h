#pragma once

#include "platform/posix/Status.h"

#include <string>

namespace frontend {

class Application;
class OneWindow;

/// The runs that need the window front-end. In a build without it they say so and what to do.

/// Where the shares are reached, as the window says it.
struct ServerLine {
    std::string address; ///< "smb://HOST:PORT/", empty where nothing serves them
    std::string state;   ///< a sentence on it, empty where the computer itself says one
    bool hasFailed = false;
};

/// Shows the window until the application has ended; returns the exit status. `only` (may be null) says when
/// others ask for it.
[[nodiscard]] platform::Result<int> runWindow(Application& application, char** argv, const ServerLine& server,
                                              const OneWindow* only);

/// Says on screen, where there is one, why the window cannot be had: who starts it from a menu sees no
/// terminal.
void showStartFailure(const std::string& text, char** argv);

/// Writes a picture of every page into `folder`.
[[nodiscard]] platform::Status takeSnapshots(Application& application, char** argv,
                                             const std::string& folder);

} // namespace frontend
