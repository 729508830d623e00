#include "platform/samba/EmbeddedServer.h"

#include "platform/posix/InputOutput.h"
#include "platform/posix/Process.h"
#include "platform/samba/InstalledSamba.h"
#include "platform/samba/SambaAccounts.h"
#include "platform/samba/ServerProcesses.h"

#include <cerrno>
#include <chrono>
#include <thread>
#include <utility>
#include <vector>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr auto startLimit = std::chrono::seconds(10);
constexpr auto lockLimit = std::chrono::seconds(8); // longer than a keeper takes to end its server
constexpr auto pause = std::chrono::milliseconds(20);

sockaddr_in loopback(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

bool canConnect(int port) {
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (socket < 0) {
        return false;
    }
    const sockaddr_in address = loopback(port);
    const bool connected = connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(socket);
    return connected;
}

std::vector<std::string> serverArguments(const std::string& program, const SambaAccounts& accounts,
                                         int port) {
    std::vector<std::string> arguments{
        program, "-F", "--no-process-group", "-s", accounts.configurationFile(), "--debug-stdout"};
    // smbd passes this option on to its daemons, which write to a log before they have read their
    // configuration.
    arguments.push_back("--log-basename=" + accounts.logFolder());
    for (std::string& option : accounts.privateOptions()) {
        arguments.push_back(std::move(option));
    }
    arguments.push_back("--option=smb ports=" + std::to_string(port));
    return arguments;
}

constexpr const char* cannotStart = "cannot start the SMB server";

/// Locks the file that the keeper of a root's server holds locked. Waits for a keeper that is just ending its
/// server.
Result<FileDescriptor> lockServer(const std::string& file) {
    FileDescriptor lock(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    const auto end = std::chrono::steady_clock::now() + lockLimit;
    while (!lock.isOpen() || ::flock(lock.get(), LOCK_EX | LOCK_NB) != 0) {
        if (!lock.isOpen() || (errno != EWOULDBLOCK && errno != EINTR)) {
            return Status::ofErrno("cannot lock", file, errno);
        }
        if (std::chrono::steady_clock::now() >= end) {
            return Status::failure(cannotStart, "",
                                   "another Brindle runs it for this root; end that one first");
        }
        std::this_thread::sleep_for(pause);
    }
    return lock;
}

std::string lastComplaint(const std::string& logFile) {
    const auto log = readWholeFile(logFile);
    return log.isOk() ? lastLineOf(*log) : std::string(log.status().why());
}

} // namespace

EmbeddedServer::EmbeddedServer(SambaPaths paths) : paths_(std::move(paths)) {}

std::string EmbeddedServer::address() const {
    return "smb://127.0.0.1:" + std::to_string(port_) + "/";
}

Status EmbeddedServer::start(int port) {
    const std::string program = sambaServer("smbd");
    if (program.empty()) {
        return Status::failure(cannotStart, "",
                               "no smbd is installed; install the package samba and try again");
    }
    if (SambaAccounts::wrapperLibrary().empty()) {
        return Status::failure(cannotStart, "",
                               "libnss_wrapper.so, through which it knows the directory's accounts, is not "
                               "installed; install the package libnss-wrapper and try again");
    }
    if (!keeper_.hasEnded()) {
        return Status::failure(cannotStart, "", "it runs already");
    }
    const SambaAccounts accounts(paths_);
    if (Status status = accounts.make(); !status.isOk()) {
        return status;
    }
    const auto lock = lockServer(paths_.folder + "/server.lock");
    if (!lock.isOk()) {
        return lock.status();
    }
    endDaemonsWith(accounts.configurationFile());
    if (canConnect(port)) {
        return Status::failure(cannotStart, "",
                               "port " + std::to_string(port) + " is in use; choose another one with --port");
    }
    const std::string logFile = accounts.logFolder() + "/smbd.log";
    const FileDescriptor log(::open(logFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    if (!log.isOpen()) {
        return Status::ofErrno("cannot write", logFile, errno);
    }
    const Status status =
        keeper_.start(serverArguments(program, accounts, port), accounts.environment(), log, *lock);
    port_ = port;
    return status.isOk() ? waitUntilListening(logFile) : status;
}

Status EmbeddedServer::waitUntilListening(const std::string& logFile) {
    const auto end = std::chrono::steady_clock::now() + startLimit;
    while (std::chrono::steady_clock::now() < end) {
        if (keeper_.hasEnded()) {
            return Status::failure(cannotStart, "",
                                   "it ended at once: " + lastComplaint(logFile) + " (see " + logFile + ")");
        }
        if (canConnect(port_)) {
            return {};
        }
        std::this_thread::sleep_for(pause);
    }
    stop();
    return Status::failure(cannotStart, "",
                           "it does not answer on port " + std::to_string(port_) + "; see " + logFile);
}

void EmbeddedServer::stop() {
    keeper_.stop();
}

} // namespace platform
