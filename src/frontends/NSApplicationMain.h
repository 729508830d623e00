#pragma once

namespace frontend {
class WindowRun;
}

/// Runs the application: reads the options, makes the host and the front-end that they ask for, and returns
/// the process's exit status when the application has ended. When the options ask for a window and `window`
/// is null, the process executes brindle-window, which has one.
int NSApplicationMain(int argc, char** argv, frontend::WindowRun* window = nullptr);
