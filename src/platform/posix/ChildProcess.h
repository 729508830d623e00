#pragma once

#include "platform/posix/FileDescriptor.h"

#include <csignal>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include <sys/types.h>

namespace platform {

/// A started program with pipes to its standard input and from its standard output. Whoever holds it collects
/// it.
struct ChildProcess {
    pid_t id = 0;
    FileDescriptor input;  ///< to write to
    FileDescriptor output; ///< to read from
};

/// Ignores SIGPIPE while it lives, so that writing to a program that has ended is an error and not the end of
/// ours. A program that is started meanwhile ignores it too: it finishes its work when nobody reads what it
/// says.
class IgnoredBrokenPipe {
  public:
    IgnoredBrokenPipe();
    ~IgnoredBrokenPipe();
    IgnoredBrokenPipe(const IgnoredBrokenPipe&) = delete;
    IgnoredBrokenPipe& operator=(const IgnoredBrokenPipe&) = delete;

  private:
    struct sigaction before_ {};
};

/// What becomes of what a program writes to its standard error.
enum class ErrorOutput { Inherited, Discarded };

/// Starts the program `command[0]` (a path) with the arguments `command`. None when it cannot be started.
[[nodiscard]] std::optional<ChildProcess> startProcess(std::span<const std::string> command,
                                                       ErrorOutput errors);

/// Starts the program, hands it `input`, throws away what it writes and waits for its end. Answers its exit
/// status, or -1 when it could not be started or was killed.
[[nodiscard]] int runProcess(std::span<const std::string> command, std::string_view input = {});

} // namespace platform
