#pragma once

#include "platform/posix/Status.h"
#include "platform/samba/SambaPaths.h"
#include "platform/samba/Sessions.h"

#include <optional>
#include <string>
#include <vector>

namespace review {

/// Who is connected to the SMB server of the current host: an embedded root's, or this computer's. There, the
/// administrator's right is asked for where another than root wants to know. Fails when Samba does not tell.
[[nodiscard]] platform::Result<std::vector<platform::Session>>
connectedClients(const std::optional<platform::SambaPaths>& root);

enum class Disconnection { Share, Computer };

/// The arguments of the run that ends all connections to a share, or of a computer with this address.
[[nodiscard]] std::vector<std::string> disconnectionWords(Disconnection kind, const std::string& what);
/// Makes it. False when it failed; the log says why.
bool disconnect(Disconnection kind, const std::string& what);

} // namespace review
