#pragma once

/// Runs the application: reads the options, makes the host and the front-end that they ask for, and returns
/// the process's exit status when the application has ended.
int NSApplicationMain(int argc, char** argv);
