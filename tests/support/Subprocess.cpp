#include "support/Subprocess.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Pipe {
    int read = -1;
    int write = -1;

    Pipe() {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) {
            throw std::runtime_error("no pipe");
        }
        read = ends[0];
        write = ends[1];
    }
};

[[noreturn]] void become(const std::vector<std::string>& command,
                         const std::vector<std::string>& environment) {
    for (const std::string& each : environment) {
        const std::size_t equals = each.find('=');
        setenv(each.substr(0, equals).c_str(), each.substr(equals + 1).c_str(), 1);
    }
    std::vector<char*> arguments;
    for (const std::string& word : command) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    execvp(arguments[0], arguments.data());
    _exit(127);
}

std::string readToEnd(int descriptor) {
    std::string text;
    char buffer[4096];
    ssize_t count = 0;
    while ((count = read(descriptor, buffer, sizeof buffer)) > 0) {
        text.append(buffer, static_cast<std::size_t>(count));
    }
    close(descriptor);
    return text;
}

void writeAll(int descriptor, const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t count = write(descriptor, text.data() + done, text.size() - done);
        if (count < 0) {
            return; // the program does not read on; its status tells the test
        }
        done += static_cast<std::size_t>(count);
    }
}

int collect(pid_t process) {
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

Finished runProgram(const std::vector<std::string>& command, const std::string& input,
                    const std::vector<std::string>& environment) {
    std::signal(SIGPIPE, SIG_IGN);
    const Pipe in;
    const Pipe out;
    const Pipe err;
    const pid_t child = fork();
    if (child == 0) {
        dup2(in.read, 0);
        dup2(out.write, 1);
        dup2(err.write, 2);
        become(command, environment);
    }
    close(in.read);
    close(out.write);
    close(err.write);
    Finished finished;
    std::thread writer([&] {
        writeAll(in.write, input);
        close(in.write);
    });
    std::thread errors([&] { finished.errors = readToEnd(err.read); });
    finished.output = readToEnd(out.read);
    writer.join();
    errors.join();
    finished.status = collect(child);
    return finished;
}

Conversation::Conversation(const std::vector<std::string>& command) {
    std::signal(SIGPIPE, SIG_IGN);
    const Pipe in;
    const Pipe out;
    process_ = fork();
    if (process_ == 0) {
        dup2(in.read, 0);
        dup2(out.write, 1);
        dup2(out.write, 2);
        become(command, {});
    }
    close(in.read);
    close(out.write);
    input_ = in.write;
    output_ = out.read;
}

Conversation::~Conversation() {
    close(input_);
    close(output_);
    collect(process_);
}

std::string Conversation::ask(const std::string& line, const std::string& part) {
    writeAll(input_, line + "\n");
    std::string answer;
    char byte = 0;
    while (read(output_, &byte, 1) == 1) {
        if (byte != '\n') {
            answer += byte;
        } else if (answer.find(part) != std::string::npos) {
            return answer;
        } else {
            answer.clear();
        }
    }
    return answer;
}
