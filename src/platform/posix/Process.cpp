#include "platform/posix/Process.h"

#include "platform/posix/InputOutput.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace platform {

namespace {

using std::chrono::steady_clock;

/// posix_spawn's list of actions on descriptors in the child.
class SpawnActions {
  public:
    SpawnActions() { error_ = ::posix_spawn_file_actions_init(&actions_); }

    ~SpawnActions() { ::posix_spawn_file_actions_destroy(&actions_); }

    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;

    void become(int descriptor, int target) {
        note(::posix_spawn_file_actions_adddup2(&actions_, descriptor, target));
    }

    void discard(int target) {
        note(::posix_spawn_file_actions_addopen(&actions_, target, "/dev/null", O_WRONLY, 0));
    }

    /// The errno of the first failure; 0 when there was none.
    [[nodiscard]] int error() const { return error_; }

    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

  private:
    void note(int error) { error_ = error_ == 0 ? error : error_; }

    posix_spawn_file_actions_t actions_{};
    int error_ = 0;
};

/// Where a child's standard error goes. `errors` is the pipe of ErrorOutput::Apart.
void redirectErrors(SpawnActions& actions, ErrorOutput where, const Pipe& output, const Pipe& errors) {
    switch (where) {
    case ErrorOutput::Inherited:
        break;
    case ErrorOutput::Discarded:
        actions.discard(STDERR_FILENO);
        break;
    case ErrorOutput::WithOutput:
        actions.become(output.writeEnd.get(), STDERR_FILENO);
        break;
    case ErrorOutput::Apart:
        actions.become(errors.writeEnd.get(), STDERR_FILENO);
        break;
    }
}

bool isTransient(int error) {
    return error == EINTR || error == EAGAIN;
}

/// Reads what is available; closes the descriptor at its end.
void readReady(FileDescriptor& from, std::string& into) {
    std::array<char, 16384> buffer{};
    const ssize_t count = ::read(from.get(), buffer.data(), buffer.size());
    if (count > 0) {
        into.append(buffer.data(), static_cast<std::size_t>(count));
    } else if (count == 0 || !isTransient(errno)) {
        from.reset();
    }
}

/// Writes as much as fits; closes the descriptor after the last byte, or when nobody reads it.
void writeReady(FileDescriptor& to, std::string_view& bytes) {
    const ssize_t count = ::write(to.get(), bytes.data(), bytes.size());
    bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    if (bytes.empty() || (count < 0 && !isTransient(errno))) {
        to.reset();
    }
}

constexpr auto noDeadline = steady_clock::time_point::max();

/// The time left until a deadline, in the form that poll(2) takes: -1 without one.
int pollTime(steady_clock::time_point deadline) {
    if (deadline == noDeadline) {
        return -1;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - steady_clock::now());
    return static_cast<int>(std::clamp<long long>(left.count(), 0, std::numeric_limits<int>::max()));
}

/// Writes to and reads from the child's pipes until the child has ended and all that it wrote is read.
/// Returns false, with errno set, when the deadline comes first or the child writes too much.
bool converse(ChildProcess& child, std::string_view input, FinishedProcess& finished,
              steady_clock::time_point deadline) {
    // Not open on a system without pidfd_open; a child that has closed its outputs is then waited for without
    // a limit, and one that has left programs behind as long as those hold its outputs open.
    FileDescriptor end = openProcess(child.id);
    bool hasEnded = false;
    ::fcntl(child.input.get(), F_SETFL, O_NONBLOCK);
    if (input.empty()) {
        child.input.reset();
    }
    while (child.output.isOpen() || child.errors.isOpen() || end.isOpen()) {
        // poll skips a descriptor of -1.
        std::array<pollfd, 4> waiting = {{{child.output.get(), POLLIN, 0},
                                          {child.errors.get(), POLLIN, 0},
                                          {child.input.get(), POLLOUT, 0},
                                          {end.get(), POLLIN, 0}}};
        const int ready = ::poll(waiting.data(), waiting.size(), hasEnded ? 0 : pollTime(deadline));
        if (ready == 0 && hasEnded) {
            return true; // what it wrote is read; a program that it has left behind may still hold the pipes
        }
        if (ready == 0) {
            errno = ETIMEDOUT;
        }
        if (ready == 0 || (ready < 0 && errno != EINTR)) {
            return false;
        }
        if (ready < 0) {
            continue;
        }
        if (waiting[0].revents != 0) {
            readReady(child.output, finished.output);
        }
        if (waiting[1].revents != 0) {
            readReady(child.errors, finished.errors);
        }
        if (std::max(finished.output.size(), finished.errors.size()) > largestOutput) {
            errno = EFBIG;
            return false;
        }
        if (waiting[2].revents != 0) {
            writeReady(child.input, input);
        }
        if (waiting[3].revents != 0) {
            end.reset();
            child.input.reset();
            hasEnded = true;
        }
    }
    return true;
}

} // namespace

std::vector<std::string> currentEnvironment() {
    std::vector<std::string> variables;
    for (char** each = environ; each != nullptr && *each != nullptr; ++each) {
        variables.emplace_back(*each);
    }
    return variables;
}

std::vector<std::string> systemEnvironment() {
    return {"PATH=/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL=C"};
}

IgnoredBrokenPipe::IgnoredBrokenPipe() {
    struct sigaction ignore {};

    ignore.sa_handler = SIG_IGN;
    ::sigaction(SIGPIPE, &ignore, &before_);
}

IgnoredBrokenPipe::~IgnoredBrokenPipe() {
    ::sigaction(SIGPIPE, &before_, nullptr);
}

Result<ChildProcess> startProcess(const Command& command) {
    auto input = makePipe();
    auto output = makePipe();
    auto errors = command.errors == ErrorOutput::Apart ? makePipe() : Pipe();
    for (const auto* pipe : {&input, &output, &errors}) {
        if (!pipe->isOk()) {
            return pipe->status();
        }
    }
    SpawnActions actions;
    actions.become(input->readEnd.get(), STDIN_FILENO);
    actions.become(output->writeEnd.get(), STDOUT_FILENO);
    redirectErrors(actions, command.errors, *output, *errors);
    // posix_spawn takes pointers to non-const strings.
    std::vector<std::string> words = command.words;
    std::vector<std::string> environment = command.environment;
    ChildProcess child;
    int error = actions.error();
    if (error == 0) {
        error = ::posix_spawn(&child.id, words.front().c_str(), actions.get(), nullptr,
                              nullTerminated(words).data(), nullTerminated(environment).data());
    }
    if (error != 0) {
        return Status::ofErrno("cannot start", words.front(), error);
    }
    child.input = std::move(input->writeEnd);
    child.output = std::move(output->readEnd);
    child.errors = std::move(errors->readEnd);
    return child;
}

FileDescriptor openProcess(pid_t process) {
    return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
}

Result<int> waitForProcess(pid_t process) {
    int status = 0;
    while (::waitpid(process, &status, 0) < 0) {
        if (errno != EINTR) {
            return Status::ofErrno("cannot wait for process", std::to_string(process), errno);
        }
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

Result<FinishedProcess> runProcess(const Command& command, std::string_view input,
                                   std::optional<std::chrono::milliseconds> timeLimit) {
    const auto deadline = timeLimit ? steady_clock::now() + *timeLimit : noDeadline;
    const IgnoredBrokenPipe ignored;
    auto child = startProcess(command);
    if (!child.isOk()) {
        return child.status();
    }
    FinishedProcess finished;
    if (!converse(*child, input, finished, deadline)) {
        const int error = errno;
        ::kill(child->id, SIGKILL);
        static_cast<void>(waitForProcess(child->id)); // the failure is already known
        return Status::ofErrno("cannot wait for", command.words.front(), error);
    }
    const auto status = waitForProcess(child->id);
    if (!status.isOk()) {
        return status.status();
    }
    finished.status = *status;
    return finished;
}

std::vector<char*> nullTerminated(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (auto& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

std::string lastLineOf(std::string_view text) {
    const std::size_t end = text.find_last_not_of(" \n");
    if (end == std::string_view::npos) {
        return {};
    }
    const std::size_t lineBreak = text.rfind('\n', end);
    const std::size_t start =
        lineBreak == std::string_view::npos ? 0 : text.find_first_not_of(' ', lineBreak + 1);
    return std::string(text.substr(start, end + 1 - start));
}

} // namespace platform
