#include "platform/posix/CapturedRun.h"

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace platform {

namespace {

class Pipe {
  public:
    Pipe() { valid_ = ::pipe2(ends_.data(), O_CLOEXEC) == 0; }

    ~Pipe() {
        closeEnd(0);
        closeEnd(1);
    }

    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    [[nodiscard]] bool valid() const { return valid_; }

    [[nodiscard]] int readEnd() const { return ends_[0]; }

    [[nodiscard]] int writeEnd() const { return ends_[1]; }

    void closeEnd(std::size_t which) {
        if (valid_ && ends_.at(which) >= 0) {
            ::close(ends_.at(which));
            ends_.at(which) = -1;
        }
    }

  private:
    std::array<int, 2> ends_{-1, -1};
    bool valid_ = false;
};

std::string readAll(int descriptor) {
    std::string bytes;
    std::array<char, 4096> buffer{};
    while (true) {
        const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
        if (count > 0) {
            bytes.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return bytes;
        }
    }
}

int collect(pid_t process) {
    int status = 0;
    while (::waitpid(process, &status, 0) < 0) {
        if (errno != EINTR) {
            return 127;
        }
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

std::vector<char*> nullTerminated(std::vector<std::string>& texts) {
    std::vector<char*> answer;
    for (auto& text : texts) {
        answer.push_back(text.data());
    }
    answer.push_back(nullptr);
    return answer;
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

CapturedRun runCaptured(std::vector<std::string> arguments, std::vector<std::string> environment,
                        std::string_view input) {
    Pipe in;
    Pipe out;
    if (!in.valid() || !out.valid() ||
        ::write(in.writeEnd(), input.data(), input.size()) != static_cast<ssize_t>(input.size())) {
        return {};
    }
    in.closeEnd(1);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, in.readEnd(), 0);
    ::posix_spawn_file_actions_adddup2(&actions, out.writeEnd(), 1);
    ::posix_spawn_file_actions_adddup2(&actions, out.writeEnd(), 2);
    pid_t process = 0;
    const int error = ::posix_spawn(&process, arguments.front().c_str(), &actions, nullptr,
                                    nullTerminated(arguments).data(), nullTerminated(environment).data());
    ::posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        return {};
    }
    out.closeEnd(1);
    CapturedRun answer;
    answer.started = true;
    answer.output = readAll(out.readEnd());
    answer.status = collect(process);
    return answer;
}

} // namespace platform
