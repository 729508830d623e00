#include "platform/host/EmbeddedServer.h"

#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSString.h"
#include "platform/host/SambaAccounts.h"
#include "platform/posix/CapturedRun.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr std::array kProgramPaths{"/usr/sbin/smbd", "/usr/local/sbin/smbd", "/usr/local/samba/sbin/smbd"};
constexpr auto kStartLimit = std::chrono::seconds(10);
constexpr auto kStopLimit = std::chrono::seconds(5);
constexpr auto kPause = std::chrono::milliseconds(20);

std::string smbdProgram() {
    for (const char* path : kProgramPaths) {
        if (access(path, X_OK) == 0) {
            return path;
        }
    }
    return {};
}

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
    // smbd hands this on to its daemons, which log before they have read where to.
    arguments.push_back("--log-basename=" + accounts.logFolder());
    for (std::string& option : accounts.privateOptions()) {
        arguments.push_back(std::move(option));
    }
    arguments.push_back(stringWithFormat("--option=smb ports=%d", port));
    return arguments;
}

/// In the child: becomes the server, in a session of its own so that it and its children can be ended
/// together.
[[noreturn]] void becomeServer(char* const* arguments, char* const* environment, int log, pid_t parent) {
    setsid();
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent) {
        _exit(127); // the parent ended before the line above
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    std::signal(SIGPIPE, SIG_DFL);
    const int null = open("/dev/null", O_RDONLY);
    if (null < 0 || dup2(null, 0) < 0 || dup2(log, 1) < 0 || dup2(log, 2) < 0) {
        _exit(127);
    }
    closefrom(3);
    execve(arguments[0], arguments, environment);
    _exit(127);
}

/// True when the child has ended (and is collected) within the limit.
bool endsWithin(pid_t process, std::chrono::steady_clock::duration limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    do {
        if (waitpid(process, nullptr, WNOHANG) != 0) {
            return true;
        }
        std::this_thread::sleep_for(kPause);
    } while (std::chrono::steady_clock::now() < end);
    return false;
}

std::string lastComplaint(const std::string& logFile) {
    return lastLineOf(contentsOfFile(logFile).bytes.value_or(""));
}

} // namespace

EmbeddedServer::EmbeddedServer(EmbeddedRoot root) : root_(std::move(root)) {}

EmbeddedServer::~EmbeddedServer() {
    stop();
}

std::string EmbeddedServer::address() const {
    return stringWithFormat("smb://127.0.0.1:%d/", port_);
}

std::string EmbeddedServer::start(int port) {
    if (process_ != 0) {
        return "The SMB server of this root runs already.";
    }
    const std::string program = smbdProgram();
    if (program.empty()) {
        return "No SMB server is installed.  Install the package \"samba\" and try again.";
    }
    if (SambaAccounts::wrapperLibrary().empty()) {
        return "The SMB server needs libnss_wrapper.so to know the directory's accounts.  Install the "
               "package "
               "\"libnss-wrapper\" and try again.";
    }
    if (canConnect(port)) {
        return stringWithFormat("Port %d is in use.  Choose another one with --port.", port);
    }
    const SambaAccounts accounts(root_);
    if (std::string error = accounts.make(); !error.empty()) {
        return error;
    }
    const std::string logFile = SambaAccounts(root_).logFolder() + "/smbd.log";
    const int log = open(logFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (log < 0) {
        return stringWithFormat("The SMB server's log %s cannot be written: %s.", logFile,
                                std::strerror(errno));
    }
    auto arguments = serverArguments(program, accounts, port);
    auto environment = accounts.environment();
    const auto argumentPointers = nullTerminated(arguments);
    const auto environmentPointers = nullTerminated(environment);
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child == 0) {
        becomeServer(argumentPointers.data(), environmentPointers.data(), log, parent);
    }
    close(log);
    if (child < 0) {
        return stringWithFormat("The SMB server cannot be started: %s.", std::strerror(errno));
    }
    process_ = child;
    port_ = port;
    return waitUntilListening();
}

std::string EmbeddedServer::waitUntilListening() {
    const auto end = std::chrono::steady_clock::now() + kStartLimit;
    const std::string logFile = SambaAccounts(root_).logFolder() + "/smbd.log";
    while (std::chrono::steady_clock::now() < end) {
        if (waitpid(process_, nullptr, WNOHANG) != 0) {
            process_ = 0;
            return stringWithFormat("The SMB server ended at once: %s (see %s)", lastComplaint(logFile),
                                    logFile);
        }
        if (canConnect(port_)) {
            return {};
        }
        std::this_thread::sleep_for(kPause);
    }
    stop();
    return stringWithFormat("The SMB server does not answer on port %d (see %s).", port_, logFile);
}

void EmbeddedServer::stop() {
    if (process_ == 0) {
        return;
    }
    kill(-process_, SIGTERM);
    if (!endsWithin(process_, kStopLimit)) {
        kill(-process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    process_ = 0;
    stopRpcDaemon();
}

void EmbeddedServer::stopRpcDaemon() const {
    // smbd starts it in a session of its own, and it outlives smbd. A pid file may be stale, so the process
    // must also have been started with this root's configuration.
    const NSFileContents pidFile = contentsOfFile(root_.sambaFolder() + "/pid/samba-dcerpcd.pid");
    const std::int32_t pid = intValue(pidFile.bytes.value_or(""));
    if (pid <= 1) {
        return;
    }
    const NSFileContents commandLine = contentsOfFile(stringWithFormat("/proc/%d/cmdline", pid));
    const std::vector<std::string> words =
        componentsSeparatedByString(commandLine.bytes.value_or(""), std::string_view("\0", 1));
    const std::string configuration = "--configfile=" + SambaAccounts(root_).configurationFile();
    if (lastPathComponent(words.front()) == "samba-dcerpcd" &&
        std::ranges::find(words, configuration) != words.end()) {
        kill(pid, SIGTERM);
    }
}

} // namespace platform
