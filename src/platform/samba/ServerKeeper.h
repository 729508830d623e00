#pragma once

#include "platform/posix/FileDescriptor.h"
#include "platform/posix/Status.h"

#include <string>
#include <vector>

#include <sys/types.h>

namespace platform {

/// A server and its keeper, a process between the server and this process. When this process ends in any way,
/// or calls stop(), the keeper ends the server and every process that the server has started, including those
/// in their own sessions. When the server ends, so does the keeper.
class ServerKeeper {
  public:
    ServerKeeper() = default;
    /// Stops the server.
    ~ServerKeeper();
    ServerKeeper(const ServerKeeper&) = delete;
    ServerKeeper& operator=(const ServerKeeper&) = delete;

    /// Starts the program `arguments[0]` with exactly `environment`. Its output goes to `log`. The keeper
    /// holds `lock` until no process of the server is left. Fails when no process can be made; if the program
    /// cannot be run, hasEnded() is true at once. Must not be called while a server is running.
    [[nodiscard]] Status start(std::vector<std::string> arguments, std::vector<std::string> environment,
                               const FileDescriptor& log, const FileDescriptor& lock);
    /// Ends the server and everything it has started, by force after some seconds, and waits for that. Does
    /// nothing when no server is running.
    void stop();

    /// True when no server is running, or it has ended with everything it had started.
    [[nodiscard]] bool hasEnded();

    /// The server's process ID; 0 when none is running.
    [[nodiscard]] pid_t serverId() const { return server_; }

  private:
    FileDescriptor lifeline_; ///< the keeper ends the server when this is closed
    pid_t keeper_ = 0;
    pid_t server_ = 0;
};

} // namespace platform
