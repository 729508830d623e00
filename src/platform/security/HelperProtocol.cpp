#include "platform/security/HelperProtocol.h"

#include "platform/foundation/SystemPaths.h"

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr unsigned byteBits = 8;
constexpr unsigned byteMask = 0xff;

/// This program's environment without the variable that sudo sets. A helper that is started directly was not
/// started by sudo, and one that sudo starts gets its own variable.
std::vector<std::string> helperEnvironment() {
    std::vector<std::string> variables = currentEnvironment();
    std::erase_if(variables, [](const std::string& each) { return each.starts_with("SUDO_UID="); });
    return variables;
}

bool isTransient(int error) {
    return error == EINTR || error == EAGAIN;
}

/// What the helper's first byte means; none when there is no byte yet.
std::optional<HelperStart> readStart(int descriptor) {
    char first = 0;
    const ssize_t count = ::read(descriptor, &first, 1);
    if (count < 0 && isTransient(errno)) {
        return std::nullopt;
    }
    if (count == 0) {
        return HelperStart::Ended;
    }
    if (count > 0 && first == helperStarted) {
        return HelperStart::Started;
    }
    return count > 0 && first == helperRefused ? HelperStart::Refused : HelperStart::Failed;
}

} // namespace

bool waitsForCommit(std::string_view tool) {
    return tool == systempath::nicl;
}

std::string frameHeader(std::size_t size) {
    std::string header(frameHeaderSize, '\0');
    for (std::size_t index = frameHeaderSize; index > 0; --index) {
        header[index - 1] = static_cast<char>(size & byteMask);
        size >>= byteBits;
    }
    return header;
}

std::size_t frameSize(std::string_view header) {
    std::size_t size = 0;
    for (const char byte : header.substr(0, frameHeaderSize)) {
        size = (size << byteBits) | static_cast<unsigned char>(byte);
    }
    return size;
}

std::optional<std::string> helperRequest(const std::string& tool, std::span<const std::string> arguments,
                                         std::size_t reserved) {
    std::size_t size = tool.size() + 1;
    bool holdsNul = tool.find('\0') != std::string::npos;
    for (const std::string& argument : arguments) {
        size += argument.size() + 1;
        holdsNul = holdsNul || argument.find('\0') != std::string::npos;
    }
    if (holdsNul || size > maximumHelperRequest) {
        return std::nullopt;
    }
    std::string request;
    request.reserve(reserved + size); // growing would leave copies of a password in memory
    request.append(reserved, '\0').append(tool).push_back('\0');
    for (const std::string& argument : arguments) {
        request.append(argument).push_back('\0');
    }
    return request;
}

Result<ChildProcess> startHelper(const std::vector<std::string>& command) {
    // sudo remembers by terminal whom it has let in, and without a controlling terminal takes the one of a
    // standard stream. Its runs that asked for the password had none of ours, so this one must not either.
    const FileDescriptor controlling(::open("/dev/tty", O_RDONLY | O_NOCTTY | O_CLOEXEC));
    const bool isMistaken = !controlling.isOpen() && ::isatty(STDERR_FILENO) != 0;
    return startProcess(
        {command, isMistaken ? ErrorOutput::Discarded : ErrorOutput::Inherited, helperEnvironment()});
}

HelperStart handOver(ChildProcess& helper, std::string_view request, std::chrono::milliseconds patience) {
    ::fcntl(helper.input.get(), F_SETFL, O_NONBLOCK);
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (true) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        // When everything is written, -1: poll skips that.
        const int writing = request.empty() ? -1 : helper.input.get();
        std::array<pollfd, 2> waiting = {{{helper.output.get(), POLLIN, 0}, {writing, POLLOUT, 0}}};
        const int ready =
            left.count() > 0 ? ::poll(waiting.data(), waiting.size(), static_cast<int>(left.count())) : 0;
        if (ready == 0 || (ready < 0 && errno != EINTR)) {
            return HelperStart::Failed;
        }
        if (ready > 0 && waiting[1].revents != 0) {
            const ssize_t written = ::write(helper.input.get(), request.data(), request.size());
            if (written > 0) {
                request.remove_prefix(static_cast<std::size_t>(written));
            } else if (written < 0 && !isTransient(errno)) {
                request = {}; // the helper's output tells what happened
            }
        }
        if (ready > 0 && waiting[0].revents != 0) {
            if (const auto start = readStart(helper.output.get())) {
                return *start;
            }
        }
    }
}

} // namespace platform
