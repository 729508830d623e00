#include "frontends/OneWindow.h"

#include "platform/posix/InputOutput.h"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

namespace frontend {

using platform::FileDescriptor;
using platform::Result;
using platform::Status;

namespace {

constexpr std::chrono::seconds patience{10}; ///< the first process may be starting or ending
constexpr std::chrono::milliseconds pause{50};
constexpr int answerSeconds = 2;
constexpr int questionSeconds = 1;
constexpr std::size_t longestToken = 4096;
constexpr mode_t privateFolder = 0700;
constexpr std::string_view done = "raised\n";

/// Opens the folder at `path`. Fails, with errno set, unless it exists and only this user may use it.
FileDescriptor openPrivateFolder(const std::string& path) {
    FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));

    struct stat status {};

    if (folder.isOpen() && (::fstat(folder.get(), &status) != 0 || status.st_uid != ::geteuid() ||
                            (status.st_mode & 077) != 0)) {
        folder.reset();
        errno = EPERM;
    }
    return folder;
}

Result<FileDescriptor> openFolder() {
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    const bool isUsable = runtime != nullptr && *runtime == '/' && openPrivateFolder(runtime).isOpen();
    std::string path = std::string(isUsable ? runtime : "") + "/brindle";
    if (!isUsable) {
        std::error_code error;
        const std::filesystem::path temporary = std::filesystem::temp_directory_path(error);
        if (error) {
            return Status::ofErrno("cannot use the folder", "for temporary files", error.value());
        }
        path = (temporary / ("brindle-" + std::to_string(::geteuid()))).string();
    }
    ::mkdir(path.c_str(), privateFolder); // if this fails, opening the folder fails as well
    FileDescriptor folder = openPrivateFolder(path);
    return folder.isOpen() ? Result<FileDescriptor>(std::move(folder))
                           : Status::ofErrno("cannot use the folder", path, errno);
}

/// Returns a file name for the place, which always has the same length (FNV-1a).
std::string nameFor(const std::string& place) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char each : place) {
        hash = (hash ^ static_cast<unsigned char>(each)) * 0x100000001b3;
    }
    return "window-" + std::to_string(hash);
}

/// Returns the address of a socket in the folder, by a path that is short wherever the folder is.
sockaddr_un addressOf(const FileDescriptor& folder, const std::string& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = "/proc/self/fd/" + std::to_string(folder.get()) + "/" + name;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

FileDescriptor makeSocket(int flags = 0) {
    return FileDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0));
}

void limitWaiting(const FileDescriptor& socket, int seconds) {
    const timeval limit{seconds, 0};
    ::setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    ::setsockopt(socket.get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
}

/// Asks the process that has the window to show it. Returns true when it confirms that.
bool askForWindow(const FileDescriptor& folder, const std::string& socketName) {
    const FileDescriptor socket = makeSocket();
    const sockaddr_un address = addressOf(folder, socketName);
    limitWaiting(socket, answerSeconds);
    if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        return false;
    }
    const char* token = std::getenv("XDG_ACTIVATION_TOKEN");
    if (!platform::writeAll(socket.get(), token == nullptr ? "" : token, socketName).isOk()) {
        return false;
    }
    ::shutdown(socket.get(), SHUT_WR);
    return platform::readAll(socket.get(), socketName, longestToken).valueOr("") == done;
}

} // namespace

OneWindow::OneWindow(FileDescriptor folder, FileDescriptor lock, std::string socket)
    : folder_(std::move(folder)), lock_(std::move(lock)), socket_(std::move(socket)) {}

OneWindow::~OneWindow() {
    ::unlinkat(folder_.get(), socket_.c_str(), 0);
}

Result<std::unique_ptr<OneWindow>> OneWindow::take(const std::string& place) {
    auto folder = openFolder();
    if (!folder.isOk()) {
        return folder.status();
    }
    const std::string name = nameFor(place);
    const std::string socketName = name + ".socket";
    const auto end = std::chrono::steady_clock::now() + patience;
    do {
        // The system releases the lock of a process that has ended, however it ended.
        FileDescriptor lock(::openat(folder->get(), (name + ".lock").c_str(),
                                     O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (!lock.isOpen()) {
            return Status::ofErrno("cannot open the lock", name, errno);
        }
        if (::flock(lock.get(), LOCK_EX | LOCK_NB) == 0) {
            std::unique_ptr<OneWindow> mine(new OneWindow(std::move(*folder), std::move(lock), socketName));
            Status status = mine->listen();
            return status.isOk() ? Result(std::move(mine)) : std::move(status);
        }
        if (askForWindow(*folder, socketName)) {
            return std::unique_ptr<OneWindow>();
        }
        std::this_thread::sleep_for(pause);
    } while (std::chrono::steady_clock::now() < end);
    return Status::failure("the window is open already", place,
                           "and its Brindle does not answer; wait until it has done what it is doing");
}

Status OneWindow::listen() {
    ::unlinkat(folder_.get(), socket_.c_str(), 0); // left by a killed process
    listener_ = makeSocket(SOCK_NONBLOCK);
    const sockaddr_un address = addressOf(folder_, socket_);
    if (!listener_.isOpen() ||
        ::bind(listener_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(listener_.get(), SOMAXCONN) != 0) {
        return Status::ofErrno("cannot listen at", socket_, errno);
    }
    return {};
}

void OneWindow::answer(const std::function<void(const std::string& token)>& raise) const {
    const FileDescriptor asking(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!asking.isOpen()) {
        return; // the other process has gone
    }
    limitWaiting(asking, questionSeconds);
    const auto token = platform::readAll(asking.get(), socket_, longestToken);
    if (token.isOk()) {
        raise(*token);
        // A process that no longer waits for the answer does not need it.
        static_cast<void>(platform::writeAll(asking.get(), done, socket_));
    }
}

} // namespace frontend
