#include "tools/HelperService.h"

#include "platform/posix/Process.h"

#include <chrono>
#include <filesystem>
#include <system_error>
#include <vector>

using platform::Status;

namespace {

constexpr auto limit = std::chrono::seconds(60); // a server may wait for its network

bool exists(const char* path) {
    std::error_code ignored; // what cannot be looked at cannot be used either
    return std::filesystem::exists(path, ignored);
}

/// The words of the program that does it.
std::vector<std::string> commandFor(bool isStart) {
    if (exists("/run/systemd/system")) {
        const bool isCalledSmb =
            !exists("/lib/systemd/system/smbd.service") && exists("/lib/systemd/system/smb.service");
        return {"/usr/bin/systemctl", isStart ? "start" : "enable", isCalledSmb ? "smb" : "smbd"};
    }
    return isStart ? std::vector<std::string>{"/usr/sbin/service", "smbd", "start"}
                   : std::vector<std::string>{"/usr/sbin/update-rc.d", "smbd", "enable"};
}

} // namespace

Status controlService(std::span<const std::string> arguments) {
    if (arguments.size() != 2 || arguments[0] != "smbd" ||
        (arguments[1] != "start" && arguments[1] != "enable")) {
        return Status::failure("wrong arguments", {}, "use service smbd start|enable");
    }
    const std::vector<std::string> words = commandFor(arguments[1] == "start");
    if (!exists(words.front().c_str())) {
        return Status::failure("cannot start", "the SMB server", words.front() + " is not installed");
    }
    // What it says goes to nobody's terminal: a server that it starts would keep ours open.
    const auto run = platform::runProcess(
        {words, platform::ErrorOutput::Discarded, {"PATH=/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL=C"}}, {},
        limit);
    if (!run.isOk()) {
        return run.status();
    }
    const std::string said = platform::lastLineOf(run->output);
    return run->status == 0
               ? Status()
               : Status::failure("cannot start", "the SMB server",
                                 words.front() + " has failed" + (said.empty() ? "" : ": " + said));
}
