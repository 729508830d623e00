#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace platform {

// The computer's processes as /proc shows them. A process may end at any time; for one that has ended every
// function returns an empty value.

/// The contents of a file in /proc, whose size the kernel does not tell; empty when it cannot be read.
[[nodiscard]] std::string kernelText(const std::string& path);

[[nodiscard]] std::vector<pid_t> processIds();

/// The command line, which the process may have changed since it was started.
[[nodiscard]] std::vector<std::string> commandLineOf(pid_t process);
/// The name of the program, which the system truncates to 15 bytes.
[[nodiscard]] std::string programNameOf(pid_t process);
/// The numbers in a line of /proc/PID/status: the real, effective, saved and file system's user in "Uid".
[[nodiscard]] std::vector<std::string> statusNumbersOf(pid_t process, std::string_view line);
/// The first of them: "PPid" is the parent, "Uid" the owner.
[[nodiscard]] std::string statusNumberOf(pid_t process, std::string_view line);
/// Whether there is such a process, if only one that nobody has asked about since it ended.
[[nodiscard]] bool isRunning(pid_t process);
/// The process that started or adopted this one; 0 when there is no such process.
[[nodiscard]] pid_t parentOf(pid_t process);

/// Whether the process belongs to a container on this system, in which it has another number.
[[nodiscard]] bool isInContainer(pid_t process);

} // namespace platform
