#include "tools/HelperSignal.h"

#include "platform/foundation/NSFileManager.h"
#include "platform/host/HostProcesses.h"
#include "platform/posix/Process.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <string_view>

#include <sys/syscall.h>
#include <unistd.h>

using platform::Status;

namespace {

constexpr const char* cannotSignal = "cannot hang up process";

/// The file name of the program that a process runs; empty when it cannot be found out.
std::string programOf(const std::string& processId) {
    std::array<char, 4096> buffer{};
    const ssize_t length = ::readlink(("/proc/" + processId + "/exe").c_str(), buffer.data(), buffer.size());
    if (length < 0) {
        return {};
    }
    std::string_view path(buffer.data(), static_cast<std::size_t>(length));
    // A server keeps running after an update has replaced its program.
    constexpr std::string_view replaced = " (deleted)";
    if (path.ends_with(replaced)) {
        path.remove_suffix(replaced.size());
    }
    return lastPathComponent(std::string(path));
}

} // namespace

Status hangUpServer(const std::string& processId, const std::string& root) {
    pid_t id = 0;
    const char* const end = processId.data() + processId.size();
    const auto [parsed, error] = std::from_chars(processId.data(), end, id);
    if (error != std::errc() || parsed != end || id <= 1) {
        return Status::failure(cannotSignal, processId, "is not a process; give its number");
    }
    // Held open while the program is checked, so that the signal reaches this process or none.
    const platform::FileDescriptor process = platform::openProcess(id);
    if (!process.isOpen()) {
        return Status::ofErrno(cannotSignal, processId, errno);
    }
    const std::string program = programOf(std::to_string(id));
    if (program != "smbd" && program != "AppleFileServer") {
        return Status::failure(cannotSignal, processId,
                               "is not a file server; only file servers are signalled");
    }
    if (!root.empty() && !platform::isServerOfRoot(std::to_string(id), root)) {
        return Status::failure(cannotSignal, processId,
                               "is not a server of this root; only its own servers are signalled");
    }
    if (root.empty() && !platform::isServerOfComputer(std::to_string(id))) {
        return Status::failure(cannotSignal, processId,
                               "is not one of this computer's own servers; only those are signalled");
    }
    if (::syscall(SYS_pidfd_send_signal, process.get(), SIGHUP, nullptr, 0) != 0) {
        return Status::ofErrno(cannotSignal, processId, errno);
    }
    return {};
}
