#pragma once

#include "platform/samba/SambaPaths.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace platform {

/// What any user can see of an smbd.
struct ServerState {
    pid_t process = 0;                  ///< 0: it is not running
    std::int64_t since = 0;             ///< seconds since 1970; 0 when not known
    std::vector<std::string> listensAt; ///< "ADDRESS:PORT", "*:PORT" for all addresses
};

/// The state of the computer's own server.
[[nodiscard]] ServerState smbServerState();
/// The state of an embedded root's server, which runs only as long as a Brindle that started it.
[[nodiscard]] ServerState rootServerState(const SambaPaths& paths);

/// Samba's default ports.
inline constexpr std::array<unsigned, 2> standardPorts = {445, 139};

/// The addresses on which somebody listens on one of these ports, as in ServerState::listensAt. `table` is
/// the content of /proc/net/tcp or tcp6.
[[nodiscard]] std::vector<std::string> listeningPlaces(std::string_view table,
                                                       std::span<const unsigned> ports = standardPorts);

/// The same from the kernel's current tables.
[[nodiscard]] std::vector<std::string> listeningPlaces(std::span<const unsigned> ports = standardPorts);

} // namespace platform
