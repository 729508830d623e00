#pragma once

#include "platform/posix/FileDescriptor.h"
#include "platform/posix/Status.h"

#include <chrono>
#include <csignal>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace platform {

/// This process's environment variables, each as "NAME=VALUE".
[[nodiscard]] std::vector<std::string> currentEnvironment();

/// The environment for the system's own programs: nothing of the caller's, and messages in English.
[[nodiscard]] std::vector<std::string> systemEnvironment();

/// Where a program's standard error goes.
enum class ErrorOutput {
    Inherited,  ///< to this program's standard error
    Discarded,  ///< nowhere
    WithOutput, ///< into the program's output
    Apart       ///< read separately
};

/// A program to start.
struct Command {
    std::vector<std::string> words; ///< the program's path, then its arguments
    ErrorOutput errors = ErrorOutput::Discarded;
    /// The program's whole environment.
    std::vector<std::string> environment = currentEnvironment();
};

/// A started program. Its owner must collect it with waitForProcess.
struct ChildProcess {
    pid_t id = 0;
    FileDescriptor input;  ///< to its standard input
    FileDescriptor output; ///< from its standard output
    FileDescriptor errors; ///< from its standard error with ErrorOutput::Apart, otherwise closed
};

/// Ignores SIGPIPE during its lifetime, so that writing to a program that has ended fails instead of killing
/// this one. A program started meanwhile ignores SIGPIPE too, and so finishes its work even if nobody reads
/// its output.
class IgnoredBrokenPipe {
  public:
    IgnoredBrokenPipe();
    ~IgnoredBrokenPipe();
    IgnoredBrokenPipe(const IgnoredBrokenPipe&) = delete;
    IgnoredBrokenPipe& operator=(const IgnoredBrokenPipe&) = delete;

  private:
    struct sigaction before_ {};
};

/// Starts a program, which inherits only the three standard descriptors. Fails when it cannot be started.
[[nodiscard]] Result<ChildProcess> startProcess(const Command& command);

/// A descriptor that refers to this process and to no later one with the same number (pidfd_open(2)). It
/// becomes readable when the process has ended. Not open, with errno set, when there is no such process.
[[nodiscard]] FileDescriptor openProcess(pid_t process);

/// Waits for the end of a child and returns its exit status, or 128 plus the signal that killed it. Fails
/// when `process` is not a child of this one.
[[nodiscard]] Result<int> waitForProcess(pid_t process);

/// The most that a program may write, in bytes.
inline constexpr std::size_t largestOutput = std::size_t{64} * 1024 * 1024;

/// How a program ended, and what it wrote.
struct FinishedProcess {
    int status = 0; ///< its exit status, or 128 plus the signal that killed it
    std::string output;
    std::string errors; ///< only with ErrorOutput::Apart
};

/// Runs a program to its end. `input` is the whole of its standard input; it is no failure if the program
/// does not read it. Fails when the program cannot be started, has not ended within `timeLimit`, or writes
/// more than largestOutput; the program is then killed, but programs that it has started itself are not.
[[nodiscard]] Result<FinishedProcess>
runProcess(const Command& command, std::string_view input = {},
           std::optional<std::chrono::milliseconds> timeLimit = std::nullopt);

/// The strings in the form that execve(2) takes: pointers into `texts`, which must outlive them, with a null
/// at the end.
[[nodiscard]] std::vector<char*> nullTerminated(std::vector<std::string>& texts);

/// The last line of a program's output that is not empty; "" when there is none.
[[nodiscard]] std::string lastLineOf(std::string_view text);

} // namespace platform
