#pragma once

#include "platform/posix/Status.h"

#include <optional>
#include <span>
#include <string>

namespace platform {
class SambaAccounts;
} // namespace platform

namespace tools {

/// The helper's smbstatus, which takes no arguments: returns smbstatus's listing of who is connected to the
/// server of `root`, or without it to the computer's own.
[[nodiscard]] platform::Result<std::string> listSessions(const std::optional<platform::SambaAccounts>& root,
                                                         std::span<const std::string> arguments);
/// The helper's smbcontrol, which accepts only "smbd close-share NAME" and "smbd kill-client-ip ADDRESS".
[[nodiscard]] platform::Status endSessions(const std::optional<platform::SambaAccounts>& root,
                                           std::span<const std::string> arguments);

} // namespace tools
