#include "platform/security/HelperLauncher.h"

#include "platform/posix/InputOutput.h"
#include "platform/posix/Secret.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace platform {

namespace {

/// The request as the helper reads it. None when it is too large, or when a NUL in a word would cut it in
/// two.
std::optional<std::string> requestFor(const std::string& tool, std::span<const std::string> arguments) {
    std::size_t size = tool.size() + 1;
    bool holdsNul = tool.find('\0') != std::string::npos;
    for (const std::string& argument : arguments) {
        size += argument.size() + 1;
        holdsNul = holdsNul || argument.find('\0') != std::string::npos;
    }
    if (holdsNul || size > HelperLauncher::maximumRequest) {
        return std::nullopt;
    }
    std::string request;
    request.reserve(size); // a text that grows would leave copies of a password behind
    request.append(tool).push_back('\0');
    for (const std::string& argument : arguments) {
        request.append(argument).push_back('\0');
    }
    return request;
}

/// This program's environment without the mark that sudo leaves on a shell: a helper that is started from
/// here was not started by sudo, and one that sudo starts gets a mark of its own.
std::vector<std::string> helperEnvironment() {
    std::vector<std::string> variables = currentEnvironment();
    std::erase_if(variables, [](const std::string& each) { return each.starts_with("SUDO_UID="); });
    return variables;
}

bool isTransient(int error) {
    return error == EINTR || error == EAGAIN;
}

} // namespace

HelperLauncher::HelperLauncher(std::vector<std::string> command, std::chrono::milliseconds patience)
    : command_(std::move(command)), patience_(patience) {}

HelperLauncher::~HelperLauncher() {
    collect();
}

OSStatus HelperLauncher::run(const std::string& tool, std::span<const std::string> arguments, int* output) {
    collect();
    std::optional<std::string> request = requestFor(tool, arguments);
    if (!request) {
        return errAuthorizationToolExecuteFailure;
    }
    const IgnoredBrokenPipe ignored;
    auto child = startProcess({command_, ErrorOutput::Inherited, helperEnvironment()});
    Start start = Start::Failed;
    if (child.isOk()) {
        start = handOver(*child, *request);
    }
    wipe(*request);
    if (!child.isOk()) {
        return errAuthorizationToolExecuteFailure;
    }
    if (start == Start::Ended) {
        return statusOfEnded(child->id);
    }
    running_.push_back(child->id);
    if (start == Start::Failed) {
        // A helper that comes round later must do nothing. One behind sudo cannot be killed from here, but
        // finds nobody to tell that it has started, and gives up.
        ::kill(child->id, SIGKILL);
        return errAuthorizationToolExecuteFailure;
    }
    if (output != nullptr) {
        *output = child->output.release();
    } else {
        // To the end, as a caller with a stream would read: what the tool was to do is done when this
        // returns. Nobody wants to know what it wrote.
        static_cast<void>(readAll(child->output.get(), tool));
    }
    return errAuthorizationSuccess;
}

HelperLauncher::Start HelperLauncher::handOver(ChildProcess& child, std::string_view request) const {
    ::fcntl(child.input.get(), F_SETFL, O_NONBLOCK);
    const auto deadline = std::chrono::steady_clock::now() + patience_;
    while (true) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        // poll passes a descriptor of -1 over: the input is closed once everything is written.
        std::array<pollfd, 2> waiting = {{{child.output.get(), POLLIN, 0}, {child.input.get(), POLLOUT, 0}}};
        const int ready =
            left.count() > 0 ? ::poll(waiting.data(), waiting.size(), static_cast<int>(left.count())) : 0;
        if (ready == 0 || (ready < 0 && errno != EINTR)) {
            return Start::Failed;
        }
        if (ready > 0 && waiting[1].revents != 0) {
            const ssize_t written = ::write(child.input.get(), request.data(), request.size());
            if (written > 0) {
                request.remove_prefix(static_cast<std::size_t>(written));
            }
            if (request.empty() || (written < 0 && !isTransient(errno))) {
                child.input.reset(); // its end is what tells the helper that the request is whole
            }
        }
        if (ready > 0 && waiting[0].revents != 0) {
            char first = 0;
            const ssize_t count = ::read(child.output.get(), &first, 1);
            if (count == 0) {
                return Start::Ended;
            }
            if (count > 0 || !isTransient(errno)) {
                return count > 0 && first == startedByte ? Start::Started : Start::Failed;
            }
        }
    }
}

OSStatus HelperLauncher::statusOfEnded(pid_t child) {
    const auto status = waitForProcess(child);
    // sudo's status of a refusal. The helper itself ends with another before it has started.
    const bool wasRefused = status.isOk() && *status == 1;
    return wasRefused ? errAuthorizationDenied : errAuthorizationToolExecuteFailure;
}

void HelperLauncher::collect() {
    std::erase_if(running_, [](pid_t child) { return ::waitpid(child, nullptr, WNOHANG) != 0; });
}

} // namespace platform
