#pragma once

#include "platform/posix/Process.h"
#include "platform/security/AuthorizationTypes.h"

#include <chrono>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include <sys/types.h>

namespace platform {

/// Starts brindle-helper and gives it one request: the tool's path and its arguments, over the helper's
/// standard input, so that no list of processes and no log sees them. Owned by an authority; collects the
/// helpers that it started.
class HelperLauncher {
  public:
    /// A helper that gives up before it has started ends with this status; sudo, when it refuses, with
    /// another.
    static constexpr int notStartedStatus = 125;

    /// `command` is the helper's path with its options, with sudo's before them where it is needed.
    /// `patience` is how long a helper may take to start.
    explicit HelperLauncher(std::vector<std::string> command,
                            std::chrono::milliseconds patience = std::chrono::seconds(30));
    ~HelperLauncher();
    HelperLauncher(const HelperLauncher&) = delete;
    HelperLauncher& operator=(const HelperLauncher&) = delete;

    /// Starts `tool` and waits until it has started. On success `*output` (when not null) is a descriptor for
    /// the tool's standard output, owned by the caller; without it the output goes nowhere, and this returns
    /// when the tool has ended. errAuthorizationDenied when the program in front of the helper refused;
    /// errAuthorizationToolExecuteFailure when the helper could not be started, refused the tool, said
    /// anything else first, or took too long.
    [[nodiscard]] OSStatus run(const std::string& tool, std::span<const std::string> arguments, int* output);

    /// Collects the helpers that have ended; waits for none.
    void collect();

  private:
    [[nodiscard]] OSStatus statusOfEnded(pid_t child);

    std::vector<std::string> command_;
    std::chrono::milliseconds patience_;
    std::vector<pid_t> running_;
};

} // namespace platform
