#pragma once

#include "platform/posix/Status.h"
#include "platform/samba/SambaPaths.h"
#include "platform/samba/Sessions.h"

#include <optional>
#include <string>
#include <vector>

namespace review {

/// Who is connected to the SMB server of the embedded root `root`, or without it to this computer's own. For
/// the latter a user other than root is asked for the administrator's right. Fails when Samba does not tell.
[[nodiscard]] platform::Result<std::vector<platform::Session>>
connectedClients(const std::optional<platform::SambaPaths>& root);

enum class Disconnection { Share, Computer };

/// The arguments of smbcontrol that end all connections to the share `what`, or from the computer with the
/// address `what`.
[[nodiscard]] std::vector<std::string> disconnectionWords(Disconnection kind, const std::string& what);
/// Makes that run. Returns false when it failed; the log says why.
bool disconnect(Disconnection kind, const std::string& what);

} // namespace review
