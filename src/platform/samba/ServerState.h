#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace platform {

/// The computer's own smbd, as anybody may see it.
struct ServerState {
    pid_t process = 0;                  ///< 0: it does not run
    std::int64_t since = 0;             ///< seconds since 1970; 0 where that cannot be told
    std::vector<std::string> listensAt; ///< "ADDRESS:PORT", "*:PORT" for all addresses
};

[[nodiscard]] ServerState smbServerState();

/// The places of Samba's ports, 445 and 139, at which somebody listens, from a text in the form of
/// /proc/net/tcp or tcp6.
[[nodiscard]] std::vector<std::string> listeningPlaces(std::string_view table);

} // namespace platform
