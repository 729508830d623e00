#include "support/Subprocess.h"

#include "platform/posix/InputOutput.h"
#include "platform/security/HelperSession.h"

#include <csignal>
#include <stdexcept>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using platform::ErrorOutput;

/// Returns the value of a result, or throws: the test cannot go on without it.
template <class T>
T valueOf(platform::Result<T> result) {
    if (!result.isOk()) {
        throw std::runtime_error(result.status().text());
    }
    return std::move(*result);
}

/// Looks up a program that is named without its folder in $PATH.
std::vector<std::string> located(std::vector<std::string> command) {
    if (command.front().find('/') == std::string::npos) {
        command.insert(command.begin(), "/usr/bin/env");
    }
    return command;
}

} // namespace

Finished runProgram(const std::vector<std::string>& command, const std::string& input,
                    const std::vector<std::string>& environment) {
    platform::Command run{located(command), ErrorOutput::Apart};
    for (const std::string& variable : environment) {
        const std::string start = variable.substr(0, variable.find('=') + 1);
        std::erase_if(run.environment, [&](const std::string& each) { return each.starts_with(start); });
        run.environment.push_back(variable);
    }
    return valueOf(platform::runProcess(run, input));
}

std::string outputOfHelper(const std::vector<std::string>& command, const std::vector<std::string>& run) {
    platform::HelperSession helper(command);
    std::string output;
    const OSStatus status = helper.run(run.front(), std::span(run).subspan(1), &output);
    return status == errAuthorizationSuccess ? output : std::to_string(status);
}

Conversation::Conversation(const std::vector<std::string>& command) {
    std::signal(SIGPIPE, SIG_IGN);
    child_ = valueOf(platform::startProcess({located(command), ErrorOutput::WithOutput}));
}

Conversation::~Conversation() {
    child_.input.reset();
    child_.output.reset();
    static_cast<void>(platform::waitForProcess(child_.id));
}

std::string Conversation::ask(const std::string& line, const std::string& part) {
    // If the program no longer reads, its output will show that.
    static_cast<void>(platform::writeAll(child_.input.get(), line + "\n", "the program"));
    std::string printed;
    std::size_t lineStart = 0;
    char byte = 0;
    while (::read(child_.output.get(), &byte, 1) == 1) {
        if (byte == '\n' && printed.find(part, lineStart) != std::string::npos) {
            return printed.substr(lineStart);
        }
        printed += byte;
        lineStart = byte == '\n' ? printed.size() : lineStart;
    }
    return printed; // what it printed before it ended is the reason
}

int freePort() {
    const platform::FileDescriptor socket(::socket(AF_INET, SOCK_STREAM, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (::bind(socket.get(), generic, size) != 0 || ::getsockname(socket.get(), generic, &size) != 0) {
        throw std::runtime_error("no port is free");
    }
    return ntohs(address.sin_port);
}
