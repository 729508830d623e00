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

/// An smbd, as anybody may see it.
struct ServerState {
    pid_t process = 0;                  ///< 0: it does not run
    std::int64_t since = 0;             ///< seconds since 1970; 0 where that cannot be told
    std::vector<std::string> listensAt; ///< "ADDRESS:PORT", "*:PORT" for all addresses
};

/// The computer's own.
[[nodiscard]] ServerState smbServerState();
/// The one of an embedded root, which is there while a Brindle runs it.
[[nodiscard]] ServerState rootServerState(const SambaPaths& paths);

/// Samba's own ports.
inline constexpr std::array<unsigned, 2> standardPorts = {445, 139};

/// The places of these ports at which somebody listens, from a text in the form of /proc/net/tcp or tcp6.
[[nodiscard]] std::vector<std::string> listeningPlaces(std::string_view table,
                                                       std::span<const unsigned> ports = standardPorts);

/// The same as the kernel has it now.
[[nodiscard]] std::vector<std::string> listeningPlaces(std::span<const unsigned> ports = standardPorts);

} // namespace platform
