#include "platform/samba/ServerKeeper.h"

#include "platform/posix/InputOutput.h"
#include "platform/posix/Process.h"
#include "platform/posix/ProcessTable.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <set>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr auto stopLimit = std::chrono::seconds(5);
constexpr auto keeperLimit = stopLimit + std::chrono::seconds(2);
constexpr auto pause = std::chrono::milliseconds(20);

struct Program {
    char* const* arguments;
    char* const* environment;
};

/// Runs in a new process, which becomes the server.
[[noreturn]] void becomeServer(const Program& program, pid_t keeper) {
    ::setsid();
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != keeper) {
        ::_exit(127); // the keeper ended before prctl
    }
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGPIPE, SIGCHLD}) {
        std::signal(signal, SIG_DFL);
    }
    ::closefrom(STDERR_FILENO + 1);
    ::execve(program.arguments[0], program.arguments, program.environment);
    ::_exit(127);
}

void closeAllBut(std::array<int, 3> kept) {
    std::ranges::sort(kept);
    int next = STDERR_FILENO + 1;
    for (const int each : kept) {
        for (; next < each; ++next) {
            ::close(next);
        }
        next = each + 1;
    }
    ::closefrom(next);
}

/// Waits until the other end of the lifeline is closed or the server has ended.
void waitForEnd(int lifeline, pid_t server) {
    const FileDescriptor serverEnd = openProcess(server);
    if (!serverEnd.isOpen() && errno == ESRCH) {
        return;
    }
    std::array<pollfd, 2> watched{{{lifeline, POLLIN, 0}, {serverEnd.get(), POLLIN, 0}}};
    while (::poll(watched.data(), watched.size(), -1) < 0 && errno == EINTR) {
    }
}

/// Ends all children of the keeper. The system collects them as they end (SIGCHLD is ignored), and makes
/// orphaned descendants the keeper's children.
void endAllChildren() {
    const auto end = std::chrono::steady_clock::now() + stopLimit;
    const std::string self = std::to_string(::getpid());
    std::set<pid_t> told;
    while (::waitpid(-1, nullptr, WNOHANG) == 0) {
        const bool isLate = std::chrono::steady_clock::now() >= end;
        for (const pid_t process : processIds()) {
            if (statusNumberOf(process, "PPid") == self && (isLate || told.insert(process).second)) {
                ::kill(process, isLate ? SIGKILL : SIGTERM);
            }
        }
        std::this_thread::sleep_for(pause);
    }
}

/// Runs in the keeper: starts the server, writes its process ID to `report`, and ends when the server and its
/// processes have ended.
[[noreturn]] void keep(const Program& program, int lifeline, int report, int log, int lock) {
    ::setsid();
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGPIPE, SIGCHLD}) {
        std::signal(signal, SIG_IGN);
    }
    const int null = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (null < 0 || ::dup2(null, STDIN_FILENO) < 0 || ::dup2(log, STDOUT_FILENO) < 0 ||
        ::dup2(log, STDERR_FILENO) < 0) {
        ::_exit(127);
    }
    // Close inherited descriptors: the lifeline of another server would otherwise stay open as long as this
    // keeper lives.
    closeAllBut({lifeline, report, lock});
    const pid_t keeper = ::getpid();
    const pid_t server = ::fork();
    if (server == 0) {
        becomeServer(program, keeper);
    }
    if (server > 0 && ::write(report, &server, sizeof server) == sizeof server) {
        ::close(report);
        waitForEnd(lifeline, server);
    }
    endAllChildren();
    ::_exit(0);
}

/// Returns true when the child ends within the limit, and collects it.
bool endsWithin(pid_t process, std::chrono::steady_clock::duration limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    do {
        if (::waitpid(process, nullptr, WNOHANG) != 0) {
            return true;
        }
        std::this_thread::sleep_for(pause);
    } while (std::chrono::steady_clock::now() < end);
    return false;
}

} // namespace

ServerKeeper::~ServerKeeper() {
    stop();
}

Status ServerKeeper::start(std::vector<std::string> arguments, std::vector<std::string> environment,
                           const FileDescriptor& log, const FileDescriptor& lock) {
    auto lifeline = makePipe();
    auto report = makePipe();
    if (!lifeline.isOk() || !report.isOk()) {
        return lifeline.isOk() ? report.status() : lifeline.status();
    }
    const auto argumentPointers = nullTerminated(arguments);
    const auto environmentPointers = nullTerminated(environment);
    const pid_t child = ::fork();
    if (child == 0) {
        lifeline->writeEnd.reset();
        keep({argumentPointers.data(), environmentPointers.data()}, lifeline->readEnd.get(),
             report->writeEnd.get(), log.get(), lock.get());
    }
    if (child < 0) {
        return Status::ofErrno("cannot start", arguments.front(), errno);
    }
    keeper_ = child;
    lifeline_ = std::move(lifeline->writeEnd);
    report->writeEnd.reset();
    ssize_t size = 0;
    do {
        size = ::read(report->readEnd.get(), &server_, sizeof server_);
    } while (size < 0 && errno == EINTR);
    if (size != sizeof server_) {
        stop();
        return Status::failure("cannot start", arguments.front(), "the system lets no more processes begin");
    }
    return {};
}

void ServerKeeper::stop() {
    lifeline_.reset();
    if (keeper_ != 0 && !endsWithin(keeper_, keeperLimit)) {
        ::kill(keeper_, SIGKILL);
        ::waitpid(keeper_, nullptr, 0);
    }
    keeper_ = 0;
    server_ = 0;
}

bool ServerKeeper::hasEnded() {
    if (keeper_ != 0 && ::waitpid(keeper_, nullptr, WNOHANG) != 0) {
        keeper_ = 0;
        stop();
    }
    return keeper_ == 0;
}

} // namespace platform
