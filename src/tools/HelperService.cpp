#include "tools/HelperService.h"

#include "platform/posix/Process.h"

#include <chrono>
#include <filesystem>
#include <system_error>
#include <vector>

namespace tools {

using platform::Status;

namespace {

constexpr auto limit = std::chrono::seconds(60); // a server may wait for the network

bool exists(const std::string& path) {
    std::error_code ignored; // a file that cannot be examined cannot be used either
    return std::filesystem::exists(path, ignored);
}

} // namespace

std::vector<std::string> serviceCommand(bool isStart, const std::string& computer) {
    if (exists(computer + "/run/systemd/system")) {
        const std::string units = computer + "/lib/systemd/system/";
        const bool isCalledSmb = !exists(units + "smbd.service") && exists(units + "smb.service");
        return {"/usr/bin/systemctl", isStart ? "start" : "enable", isCalledSmb ? "smb" : "smbd"};
    }
    return isStart ? std::vector<std::string>{"/usr/sbin/service", "smbd", "start"}
                   : std::vector<std::string>{"/usr/sbin/update-rc.d", "smbd", "enable"};
}

Status controlService(std::span<const std::string> arguments) {
    if (arguments.size() != 2 || arguments[0] != "smbd" ||
        (arguments[1] != "start" && arguments[1] != "enable")) {
        return Status::failure("wrong arguments", {}, "use service smbd start|enable");
    }
    const bool isStart = arguments[1] == "start";
    const char* what = isStart ? "cannot start" : "cannot have the computer start";
    const std::vector<std::string> words = serviceCommand(isStart);
    if (!exists(words.front())) {
        return Status::failure(what, "the SMB server", words.front() + " is not installed");
    }
    // Its errors are not inherited: a server that it starts would keep our standard error open.
    const auto run = platform::runProcess(
        {words, platform::ErrorOutput::Discarded, platform::systemEnvironment()}, {}, limit);
    if (!run.isOk()) {
        return run.status();
    }
    const std::string said = platform::lastLineOf(run->output);
    return run->status == 0
               ? Status()
               : Status::failure(what, "the SMB server",
                                 words.front() + " has failed" + (said.empty() ? "" : ": " + said) +
                                     "; the system's log says more");
}

} // namespace tools
