#pragma once

#include <string>

#include <sys/types.h>

namespace platform {

/// Whether `process` is an smbd of this user that was started with the configuration `file`.
[[nodiscard]] bool isServerWith(pid_t process, const std::string& file);
/// Whether `process` is such an smbd, or a descendant of one that serves a connection.
[[nodiscard]] bool isServerOrChildWith(pid_t process, const std::string& file);
/// Whether `process` is any of Samba's daemons, of this user and with that configuration. Those that smbd
/// starts have their own sessions and outlive it.
[[nodiscard]] bool isDaemonWith(pid_t process, const std::string& file);

/// Whether `process` is a file server of this computer: an smbd or AppleFileServer that belongs to root, does
/// not run in a container, and was not started with another configuration than the installed Samba's. A child
/// that serves a connection counts too.
[[nodiscard]] bool isComputersServer(pid_t process);

/// Ends all daemons with the configuration `file`, by force after some seconds. For daemons whose keeper is
/// gone.
void endDaemonsWith(const std::string& file);

} // namespace platform
