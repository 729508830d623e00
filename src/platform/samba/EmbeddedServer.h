#pragma once

#include "platform/posix/Status.h"
#include "platform/samba/SambaPaths.h"
#include "platform/samba/ServerKeeper.h"

#include <string>

#include <sys/types.h>

namespace platform {

/// The SMB server of an embedded root: the installed smbd, listening on 127.0.0.1 only, with a configuration
/// of its own below the root that includes the root's smb.conf. It knows the directory's accounts through
/// libnss_wrapper. Runs for as long as this object lives, and ends with the process however that ends. Only
/// one runs for a root at a time.
class EmbeddedServer {
  public:
    static constexpr int defaultPort = 4455;

    explicit EmbeddedServer(SambaPaths paths);

    /// Starts smbd on `port` (1 to 65535) and waits until it accepts connections, ten seconds at most. What
    /// is left of an earlier server of the root, whose keeper was killed, is ended first. Fails, and says
    /// what to do, when Samba or libnss-wrapper is not installed, the root's server runs already, the port is
    /// taken, the root cannot be written, or smbd ends with a complaint of its own.
    [[nodiscard]] Status start(int port);
    /// Ends smbd and all that it has started. Does nothing when it is not running.
    void stop();

    /// 0 when it does not run.
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
