#pragma once

#include "platform/posix/Status.h"
#include "platform/samba/SambaPaths.h"
#include "platform/samba/ServerKeeper.h"

#include <string>

#include <sys/types.h>

namespace platform {

/// The SMB server of an embedded root: the installed smbd, listening only on 127.0.0.1, with its own
/// configuration below the root, which includes the root's smb.conf. It sees the directory's accounts through
/// libnss_wrapper. It runs as long as this object lives, and ends with this process however that ends. A root
/// has only one server at a time.
class EmbeddedServer {
  public:
    static constexpr int defaultPort = 4455;

    explicit EmbeddedServer(SambaPaths paths);

    /// Starts smbd on `port` (1 to 65535) and waits up to ten seconds until it accepts connections. First
    /// ends what is left of an earlier server of the root whose keeper was killed. Fails, saying what to do,
    /// when Samba or libnss-wrapper is not installed, the root's server is already running, the port is in
    /// use, the root cannot be written, or smbd ends with an error.
    [[nodiscard]] Status start(int port);
    /// Ends smbd and every process that it has started. Does nothing when it is not running.
    void stop();

    /// smbd's process ID, even when it has ended by itself; 0 when it was not started, or was stopped.
    [[nodiscard]] pid_t processId() const { return keeper_.serverId(); }

    /// "smb://127.0.0.1:PORT/".
    [[nodiscard]] std::string address() const;

  private:
    [[nodiscard]] Status waitUntilListening(const std::string& logFile);

    SambaPaths paths_;
    int port_ = 0;
    ServerKeeper keeper_;
};

} // namespace platform
