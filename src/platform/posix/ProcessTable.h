#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace platform {

// The computer's processes as /proc shows them. A process may end at any time; everything about one that has
// ended is empty.

/// What a file of /proc holds, of which the kernel tells no size; empty for one that cannot be read.
[[nodiscard]] std::string kernelText(const std::string& path);

[[nodiscard]] std::vector<pid_t> processIds();

/// Its command line, which the process may have changed since it was started.
[[nodiscard]] std::vector<std::string> commandLineOf(pid_t process);
/// The name of the program, cut to 15 bytes by the system.
[[nodiscard]] std::string programNameOf(pid_t process);
/// The first number of a line of /proc/PID/status: "PPid" is its parent, "Uid" its owner.
[[nodiscard]] std::string statusNumberOf(pid_t process, std::string_view line);
/// The process that started it, or that has adopted it; 0 when there is no such process.
[[nodiscard]] pid_t parentOf(pid_t process);

/// Whether it belongs to a container below this system, where it has a number of its own.
[[nodiscard]] bool isInContainer(pid_t process);

} // namespace platform
