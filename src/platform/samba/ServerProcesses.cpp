#include "platform/samba/ServerProcesses.h"

#include "platform/posix/ProcessTable.h"
#include "platform/samba/InstalledSamba.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <set>
#include <system_error>
#include <thread>
#include <vector>

#include <unistd.h>

namespace platform {

namespace {

namespace fs = std::filesystem;

constexpr auto patience = std::chrono::seconds(5);
constexpr auto pause = std::chrono::milliseconds(20);
/// A process that serves a connection may have changed its command line; its ancestor has not.
constexpr int generations = 4;

bool isSameFile(const std::string& word, const std::string& file) {
    std::error_code ignored;
    return fs::weakly_canonical(word, ignored) == fs::weakly_canonical(file, ignored);
}

/// The configuration that a command line names; empty when it names none. smbd gets "-s FILE" and passes
/// "--configfile=FILE" to its daemons.
std::string configurationIn(const std::vector<std::string>& words) {
    constexpr std::string_view option = "--configfile=";
    for (std::size_t index = 1; index < words.size(); ++index) {
        if (words[index].starts_with(option)) {
            return words[index].substr(option.size());
        }
        if (words[index - 1] == "-s" || words[index - 1] == "--configfile") {
            return words[index];
        }
    }
    return {};
}

bool namesConfiguration(const std::vector<std::string>& words, const std::string& file) {
    const std::string named = configurationIn(words);
    return !named.empty() && isSameFile(named, file);
}

std::string programIn(const std::vector<std::string>& words) {
    return words.empty() ? std::string() : fs::path(words.front()).filename().string();
}

/// Whether this user owns the process. Command lines can be read whoever owns the process.
bool isOwn(pid_t process) {
    return statusNumberOf(process, "Uid") == std::to_string(::getuid());
}

} // namespace

bool isServerWith(pid_t process, const std::string& file) {
    const auto words = commandLineOf(process);
    return programIn(words) == "smbd" && isOwn(process) && namesConfiguration(words, file);
}

bool isServerOrChildWith(pid_t process, const std::string& file) {
    for (int generation = 0; generation < generations && process > 0; ++generation) {
        if (isServerWith(process, file)) {
            return true;
        }
        if (!programNameOf(process).starts_with("smbd")) {
            return false;
        }
        process = parentOf(process);
    }
    return false;
}

bool isDaemonWith(pid_t process, const std::string& file) {
    const auto words = commandLineOf(process);
    const std::string program = programIn(words);
    return (program == "smbd" || program == "samba-dcerpcd" || program.starts_with("rpcd_")) &&
           isOwn(process) && namesConfiguration(words, file);
}

bool isComputersServer(pid_t process) {
    const auto isServer = [](pid_t id) {
        const std::string name = programNameOf(id);
        return name.starts_with("smbd") || name == "AppleFileServer";
    };
    for (int generation = 0; generation < generations; ++generation) {
        const bool isOurs =
            isServer(process) && statusNumberOf(process, "Uid") == "0" && !isInContainer(process);
        const std::string configuration = configurationIn(commandLineOf(process));
        if (!isOurs || (!configuration.empty() && !isSameFile(configuration, sambaBuild().configFile))) {
            return false;
        }
        const pid_t parent = parentOf(process);
        if (parent <= 0 || !isServer(parent)) {
            return true;
        }
        process = parent;
    }
    return false;
}

void endDaemonsWith(const std::string& file) {
    const auto end = std::chrono::steady_clock::now() + patience;
    std::set<pid_t> told;
    while (true) {
        auto left = processIds();
        std::erase_if(left, [&](pid_t process) { return !isDaemonWith(process, file); });
        if (left.empty()) {
            return;
        }
        const bool isLate = std::chrono::steady_clock::now() >= end;
        for (const pid_t process : left) {
            if (isLate || told.insert(process).second) {
                ::kill(process, isLate ? SIGKILL : SIGTERM);
            }
        }
        if (isLate) {
            return;
        }
        std::this_thread::sleep_for(pause);
    }
}

} // namespace platform
