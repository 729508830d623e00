#pragma once

#include "platform/posix/Status.h"
#include "platform/samba/SambaAccounts.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace platform {

/// A user's connection to an SMB server.
struct Session {
    struct Share {
        std::string name;
        std::int64_t since = 0; ///< seconds since 1970
    };

    struct File {
        std::string path;
        std::int64_t since = 0;
        bool isWritten = false; ///< open for writing
    };

    pid_t process = 0; ///< the server process that serves the session
    std::string user;
    std::string computer; ///< the name that it gives itself, or its address
    std::string address;  ///< its IP address
    std::string protocol; ///< "SMB3_11"
    std::vector<Share> shares;
    std::vector<File> files;

    /// When the first of its shares was connected; 0 when not known.
    [[nodiscard]] std::int64_t since() const;
};

/// The output of smbstatus(1) about a root's server, or without `root` about the computer's own: JSON if it
/// supports that, otherwise tables. Fails when smbstatus is not installed, fails itself, or must be run by
/// root and is not.
[[nodiscard]] Result<std::string> sessionListing(const std::optional<SambaAccounts>& root);
/// The sessions in such a listing of either kind. Samba's own IPC$ is left out of their shares. Fails when
/// the listing begins like JSON but is not valid JSON.
[[nodiscard]] Result<std::vector<Session>> sessionsIn(std::string_view listing);

/// Each ends connections through smbcontrol(1): all to a share, or all from a computer. Clients reconnect
/// when they need to. Fails when the server is not running, or `share` is not a share's name or `address` not
/// an IP address.
[[nodiscard]] Status closeShare(const std::optional<SambaAccounts>& root, const std::string& share);
[[nodiscard]] Status disconnectComputer(const std::optional<SambaAccounts>& root, const std::string& address);

} // namespace platform
