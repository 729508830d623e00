#pragma once

#include <string>

namespace frontend {

class Application;

/// The runs that need the window front-end. In a build without it they say so and what to do.

/// Shows the window until the application has ended; answers the exit status.
[[nodiscard]] int runWindow(Application& application, char** argv);

/// Says on screen, where there is one, why the window cannot be had: who starts it from a menu sees no
/// terminal.
void showStartFailure(const std::string& text, char** argv);

/// Writes a picture of every page into `folder`; answers the exit status.
[[nodiscard]] int takeSnapshots(Application& application, char** argv, const std::string& folder);

} // namespace frontend
