#pragma once

#include "platform/host/EmbeddedRoot.h"

#include <string>

#include <sys/types.h>

namespace platform {

/// The SMB server of an embedded root: the installed smbd, listening on 127.0.0.1 only, with a configuration
/// of its own below the root that includes the root's smb.conf. It knows the directory's accounts through
/// libnss_wrapper. Runs for as long as this object lives, and ends with the process even when that is killed.
class EmbeddedServer {
  public:
    static constexpr int defaultPort = 4455;

    explicit EmbeddedServer(EmbeddedRoot root);
    /// Stops the server.
    ~EmbeddedServer();
    EmbeddedServer(const EmbeddedServer&) = delete;
    EmbeddedServer& operator=(const EmbeddedServer&) = delete;

    /// Starts smbd on `port` (1 to 65535) and waits until it accepts connections, ten seconds at most.
    /// Answers nothing, or one line that says what failed and what to do: Samba or libnss-wrapper not
    /// installed, the port taken, the server's own complaint.
    [[nodiscard]] std::string start(int port);
    /// Ends smbd, its children and its RPC daemon. Nothing when it does not run.
    void stop();

    /// 0 when it does not run.
    [[nodiscard]] pid_t processId() const { return process_; }

    /// "smb://127.0.0.1:PORT/".
    [[nodiscard]] std::string address() const;

  private:
    [[nodiscard]] std::string waitUntilListening();
    void stopRpcDaemon() const;

    EmbeddedRoot root_;
    int port_ = 0;
    pid_t process_ = 0;
};

} // namespace platform
