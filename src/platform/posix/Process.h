#pragma once

#include "platform/posix/FileDescriptor.h"
#include "platform/posix/Status.h"

#include <chrono>
#include <csignal>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace platform {

/// This process's environment, each "NAME=VALUE".
[[nodiscard]] std::vector<std::string> currentEnvironment();

/// What becomes of what a program writes to its standard error.
enum class ErrorOutput {
    Inherited,  ///< it goes where this program's goes
    Discarded,  ///< nobody reads it
    WithOutput, ///< it is part of the program's output
    Apart       ///< it is read by itself
};

/// A program to start.
struct Command {
    std::vector<std::string> words; ///< the program's path, then its arguments
    ErrorOutput errors = ErrorOutput::Discarded;
    /// All that the program finds in its environment.
    std::vector<std::string> environment = currentEnvironment();
};

/// A started program. Whoever holds it collects it with waitForProcess.
struct ChildProcess {
    pid_t id = 0;
    FileDescriptor input;  ///< to its standard input
    FileDescriptor output; ///< from its standard output
    FileDescriptor errors; ///< from its standard error with ErrorOutput::Apart, else closed
};

/// Ignores SIGPIPE while it lives, so that writing to a program that has ended is an error and not the end of
/// this one. A program that is started meanwhile ignores it too: it finishes its work when nobody reads what
/// it says.
class IgnoredBrokenPipe {
  public:
    IgnoredBrokenPipe();
    ~IgnoredBrokenPipe();
    IgnoredBrokenPipe(const IgnoredBrokenPipe&) = delete;
    IgnoredBrokenPipe& operator=(const IgnoredBrokenPipe&) = delete;

  private:
    struct sigaction before_ {};
};

/// Starts a program. It inherits no descriptor but its standard three. Fails when it cannot be started.
[[nodiscard]] Result<ChildProcess> startProcess(const Command& command);

/// A descriptor that stands for this process and no later one of its number (pidfd_open(2)); it can be read
/// once the process has ended. Not open, with errno set, when there is no such process.
[[nodiscard]] FileDescriptor openProcess(pid_t process);

/// Waits for the end of a child and returns its exit status, or 128 plus the signal that killed it. Fails
/// when `process` is no child of this one.
[[nodiscard]] Result<int> waitForProcess(pid_t process);

/// How a program ended, and what it wrote.
struct FinishedProcess {
    int status = 0; ///< its exit status, or 128 plus the signal that killed it
    std::string output;
    std::string errors; ///< with ErrorOutput::Apart
};

/// Runs a program to its end. `input` is all that its standard input holds; a program that does not read it
/// is no failure. Fails when the program cannot be started, and when it has not ended within `timeLimit`: it
/// is killed then. Programs that it started itself are not.
[[nodiscard]] Result<FinishedProcess>
runProcess(const Command& command, std::string_view input = {},
           std::optional<std::chrono::milliseconds> timeLimit = std::nullopt);

/// The texts as execve(2) takes them: pointers into `texts`, which must outlive them, and a null at the end.
[[nodiscard]] std::vector<char*> nullTerminated(std::vector<std::string>& texts);

/// The last line of what a program said that is not empty; empty when there is none.
[[nodiscard]] std::string lastLineOf(std::string_view text);

} // namespace platform
