#include "platform/posix/ChildProcess.h"

#include <array>
#include <cerrno>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace platform {

namespace {

struct Pipe {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;
};

std::optional<Pipe> makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        return std::nullopt;
    }
    return Pipe{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

/// posix_spawn's list of what happens to descriptors in the child.
class SpawnActions {
  public:
    SpawnActions() { ::posix_spawn_file_actions_init(&actions_); }

    ~SpawnActions() { ::posix_spawn_file_actions_destroy(&actions_); }

    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;

    void become(int descriptor, int target) {
        failed_ |= ::posix_spawn_file_actions_adddup2(&actions_, descriptor, target) != 0;
    }

    void discard(int target) {
        failed_ |= ::posix_spawn_file_actions_addopen(&actions_, target, "/dev/null", O_WRONLY, 0) != 0;
    }

    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return failed_ ? nullptr : &actions_; }

  private:
    posix_spawn_file_actions_t actions_{};
    bool failed_ = false;
};

/// Our environment without the mark that sudo leaves on a shell: a program that we start was not started by
/// sudo, and one that sudo starts for us gets a mark of its own.
std::vector<char*> environmentOfChild() {
    std::vector<char*> kept;
    for (char** each = environ; *each != nullptr; ++each) {
        if (!std::string_view(*each).starts_with("SUDO_UID=")) {
            kept.push_back(*each);
        }
    }
    kept.push_back(nullptr);
    return kept;
}

} // namespace

IgnoredBrokenPipe::IgnoredBrokenPipe() {
    struct sigaction ignore {};

    ignore.sa_handler = SIG_IGN;
    ::sigaction(SIGPIPE, &ignore, &before_);
}

IgnoredBrokenPipe::~IgnoredBrokenPipe() {
    ::sigaction(SIGPIPE, &before_, nullptr);
}

std::optional<ChildProcess> startProcess(std::span<const std::string> command, ErrorOutput errors) {
    auto input = makePipe();
    auto output = makePipe();
    if (!input || !output) {
        return std::nullopt;
    }
    SpawnActions actions;
    actions.become(input->readEnd.get(), STDIN_FILENO);
    actions.become(output->writeEnd.get(), STDOUT_FILENO);
    if (errors == ErrorOutput::Discarded) {
        actions.discard(STDERR_FILENO);
    }
    // posix_spawn wants texts that it could change; they are copies, so that it may.
    std::vector<std::string> words(command.begin(), command.end());
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    const std::vector<char*> environment = environmentOfChild();
    ChildProcess child;
    if (actions.get() == nullptr || ::posix_spawn(&child.id, arguments.front(), actions.get(), nullptr,
                                                  arguments.data(), environment.data()) != 0) {
        return std::nullopt;
    }
    child.input = std::move(input->writeEnd);
    child.output = std::move(output->readEnd);
    return child;
}

int runProcess(std::span<const std::string> command, std::string_view input) {
    const IgnoredBrokenPipe ignored;
    auto child = startProcess(command, ErrorOutput::Discarded);
    if (!child) {
        return -1;
    }
    while (!input.empty()) {
        const ssize_t written = ::write(child->input.get(), input.data(), input.size());
        if (written < 0 && errno != EINTR) {
            break; // it has ended without reading; its status tells
        }
        input.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
    child->input.reset();
    std::array<char, 512> unread{};
    while (::read(child->output.get(), unread.data(), unread.size()) > 0) {
    }
    int status = 0;
    while (::waitpid(child->id, &status, 0) < 0) {
        if (errno != EINTR) {
            return -1;
        }
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace platform
