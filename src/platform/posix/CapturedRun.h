#pragma once

#include "platform/posix/Process.h"

#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// How a program ended that was run to its end.
struct CapturedRun {
    bool started = false;
    int status = 0;     ///< its exit status; 128 plus the signal that killed it
    std::string output; ///< what it wrote to its standard output and error
};

/// The old form of runProcess, for as long as anything calls it. Runs `arguments` (the first is the program's
/// path) with exactly `environment` and waits for its end. `input`, which must fit a pipe (64 KiB), is all
/// that its standard input holds.
[[nodiscard]] CapturedRun runCaptured(std::vector<std::string> arguments,
                                      std::vector<std::string> environment, std::string_view input);

} // namespace platform
