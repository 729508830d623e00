#pragma once

#include <string>

#include <sys/types.h>

namespace platform {

/// Whether `process` is this user's smbd that was started with the configuration `file`.
[[nodiscard]] bool isServerWith(pid_t process, const std::string& file);
/// The same for any of Samba's daemons: those that smbd starts live in sessions of their own and outlast it.
[[nodiscard]] bool isDaemonWith(pid_t process, const std::string& file);

/// Whether `process` serves this computer: it is root's smbd or AppleFileServer, of this computer and no
/// container below it, and was not started with a configuration other than the installed Samba's, or is a
/// child of such a process that serves a connection.
[[nodiscard]] bool isComputersServer(pid_t process);

/// Ends all daemons with the configuration `file`, by force after some seconds. Nobody keeps them any more.
void endDaemonsWith(const std::string& file);

} // namespace platform
