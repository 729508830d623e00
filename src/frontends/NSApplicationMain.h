#pragma once

namespace frontend {
class WindowRun;
}

/// Runs the application: reads the options, makes the host and the front-end that they ask for, and returns
/// the process's exit status when the application has ended. Without `window`, the process becomes
/// brindle-window, which has one, when the options ask for it.
int NSApplicationMain(int argc, char** argv, frontend::WindowRun* window = nullptr);
