#include "platform/security/HelperLauncher.h"

#include "platform/posix/InputOutput.h"
#include "platform/posix/Secret.h"
#include "platform/security/HelperProtocol.h"

#include <algorithm>
#include <csignal>
#include <optional>
#include <utility>

#include <sys/wait.h>

namespace platform {

HelperLauncher::HelperLauncher(std::vector<std::string> command, std::chrono::milliseconds patience)
    : command_(std::move(command)), patience_(patience) {}

HelperLauncher::~HelperLauncher() {
    collect();
}

OSStatus HelperLauncher::run(const std::string& tool, std::span<const std::string> arguments, int* output) {
    collect();
    std::optional<std::string> request = helperRequest(tool, arguments);
    if (!request) {
        return errAuthorizationToolExecuteFailure;
    }
    const IgnoredBrokenPipe ignored;
    auto child = startHelper(command_);
    HelperStart start = HelperStart::Failed;
    if (child.isOk()) {
        start = handOver(*child, *request, HelperInput::Closes, patience_);
    }
    wipe(*request);
    if (!child.isOk()) {
        return errAuthorizationToolExecuteFailure;
    }
    if (start == HelperStart::Ended) {
        return statusOfEnded(child->id);
    }
    running_.push_back(child->id);
    if (start != HelperStart::Started) {
        // A helper that starts later must do nothing. One started by sudo cannot be killed from here, but it
        // finds nobody to tell that it has started, and gives up.
        ::kill(child->id, SIGKILL);
        return errAuthorizationToolExecuteFailure;
    }
    if (output != nullptr) {
        *output = child->output.release();
    } else {
        // To the end, as a caller with a stream would read: what the tool was to do is done when this
        // returns. Its output is not needed.
        static_cast<void>(readAll(child->output.get(), tool));
    }
    return errAuthorizationSuccess;
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
