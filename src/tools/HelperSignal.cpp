#include "tools/HelperSignal.h"

#include "platform/foundation/NSFileManager.h"
#include "platform/host/EmbeddedRoot.h"
#include "platform/posix/Process.h"
#include "platform/posix/WholeNumber.h"
#include "platform/samba/SambaAccounts.h"
#include "platform/samba/ServerProcesses.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <string_view>

#include <sys/syscall.h>
#include <unistd.h>

namespace tools {

using platform::Status;

namespace {

constexpr const char* cannotSignal = "cannot hang up process";

/// The file name of the program that a process runs; empty when it cannot be found out.
std::string programOf(pid_t process) {
    std::array<char, 4096> buffer{};
    const std::string link = "/proc/" + std::to_string(process) + "/exe";
    const ssize_t length = ::readlink(link.c_str(), buffer.data(), buffer.size());
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

std::string configurationOf(const std::string& root) {
    return platform::SambaAccounts(platform::EmbeddedRoot(root).sambaPaths()).configurationFile();
}

} // namespace

Status hangUpServer(const std::string& processId, const std::string& root) {
    const auto id = platform::wholeNumber<pid_t>(processId);
    if (!id || *id <= 1) {
        return Status::failure(cannotSignal, processId, "is not a process; give its number");
    }
    // Held open while the program is checked, so that the signal reaches this process or none.
    const platform::FileDescriptor process = platform::openProcess(*id);
    if (!process.isOpen()) {
        return Status::ofErrno(cannotSignal, processId, errno);
    }
    const std::string program = programOf(*id);
    if (program != "smbd" && program != "AppleFileServer") {
        return Status::failure(cannotSignal, processId,
                               "is not a file server; only file servers are signalled");
    }
    if (!root.empty() && !platform::isServerOrChildWith(*id, configurationOf(root))) {
        return Status::failure(cannotSignal, processId,
                               "is not a server of this root; only its own servers are signalled");
    }
    if (root.empty() && !platform::isComputersServer(*id)) {
        return Status::failure(cannotSignal, processId,
                               "is not one of this computer's own servers; only those are signalled");
    }
    if (::syscall(SYS_pidfd_send_signal, process.get(), SIGHUP, nullptr, 0) != 0) {
        return Status::ofErrno(cannotSignal, processId, errno);
    }
    return {};
}

} // namespace tools
