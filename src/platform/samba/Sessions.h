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

/// Somebody who is connected to an SMB server.
struct Session {
    struct Share {
        std::string name;
        std::int64_t since = 0; ///< seconds since 1970
    };

    struct File {
        std::string path;
        std::int64_t since = 0;
        bool isWritten = false; ///< it is open for writing
    };

    pid_t process = 0; ///< the server's that serves it
    std::string user;
    std::string computer; ///< as it calls itself, or its address
    std::string address;  ///< an IP address
    std::string protocol; ///< "SMB3_11"
    std::vector<Share> shares;
    std::vector<File> files;

    /// When it was connected to the first of its shares; 0 where that cannot be told.
    [[nodiscard]] std::int64_t since() const;
};

/// What smbstatus(1) says of the computer's own server, or of a root's: JSON where it can, else its tables.
/// Fails when it is not installed, fails itself, or must be run by root and is not.
[[nodiscard]] Result<std::string> sessionListing(const std::optional<SambaAccounts>& root);
/// The sessions in such a listing of either kind. What Samba serves itself (IPC$) is left out of their
/// shares. Fails for what begins as JSON and is none.
[[nodiscard]] Result<std::vector<Session>> sessionsIn(std::string_view listing);

/// Each ends connections through smbcontrol(1): all to a share, or all of a computer. Programs reconnect when
/// they need to. Fails when the server does not run, or `share` or `address` is none.
[[nodiscard]] Status closeShare(const std::optional<SambaAccounts>& root, const std::string& share);
[[nodiscard]] Status disconnectComputer(const std::optional<SambaAccounts>& root, const std::string& address);

} // namespace platform
