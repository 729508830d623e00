#pragma once

#include "platform/posix/Status.h"

#include <optional>
#include <span>
#include <string>

namespace platform {
class SambaAccounts;
}

/// The helper's smbstatus, which takes no arguments: who is connected to the server.
[[nodiscard]] platform::Result<std::string> listSessions(const std::optional<platform::SambaAccounts>& root,
                                                         std::span<const std::string> arguments);
/// The helper's smbcontrol: "smbd close-share NAME" or "smbd kill-client-ip ADDRESS", and nothing else.
[[nodiscard]] platform::Status endSessions(const std::optional<platform::SambaAccounts>& root,
                                           std::span<const std::string> arguments);
