#pragma once

#include "platform/posix/FileDescriptor.h"
#include "platform/posix/Status.h"

#include <string>
#include <vector>

#include <sys/types.h>

namespace platform {

/// A server and its keeper, a process between the server and this one. When this process ends in any way, or
/// calls stop(), the keeper ends the server and every process that the server has started, including those in
/// sessions of their own. The keeper ends with the server.
class ServerKeeper {
  public:
    ServerKeeper() = default;
    /// Stops the server.
    ~ServerKeeper();
    ServerKeeper(const ServerKeeper&) = delete;
    ServerKeeper& operator=(const ServerKeeper&) = delete;

    /// Starts the program `arguments[0]` with exactly `environment`. What it writes goes to `log`. The keeper
    /// holds `lock` until nothing of the server is left. Fails when no process can be made; a program that
    /// cannot be run has ended at once. Not while a server runs.
    [[nodiscard]] Status start(std::vector<std::string> arguments, std::vector<std::string> environment,
                               const FileDescriptor& log, const FileDescriptor& lock);
    /// Ends the server with all that it has started, by force after some seconds, and waits for it. Nothing
    /// when none runs.
    void stop();

    /// True when no server runs, or it has ended with all that it had started.
    [[nodiscard]] bool hasEnded();

    /// 0 when none was started.
    [[nodiscard]] pid_t serverId() const { return server_; }

  private:
    FileDescriptor lifeline_; ///< the keeper waits for it to be closed
    pid_t keeper_ = 0;
    pid_t server_ = 0;
};

} // namespace platform
