#include "platform/posix/ProcessTable.h"

#include "platform/posix/WholeNumber.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <system_error>

namespace platform {

namespace {

std::string fileOf(pid_t process, const char* name) {
    return kernelText("/proc/" + std::to_string(process) + "/" + name);
}

} // namespace

std::string kernelText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::string text;
    std::array<char, 4096> part{};
    // Not with stream iterators, which would throw when the process ends meanwhile.
    while (in.read(part.data(), part.size()) || in.gcount() > 0) {
        text.append(part.data(), static_cast<std::size_t>(in.gcount()));
    }
    return text;
}

std::vector<pid_t> processIds() {
    std::vector<pid_t> ids;
    std::error_code error;
    for (std::filesystem::directory_iterator entry("/proc", error), end; !error && entry != end;
         entry.increment(error)) {
        if (const auto id = wholeNumber<pid_t>(entry->path().filename().string())) {
            ids.push_back(*id);
        }
    }
    return ids;
}

std::vector<std::string> commandLineOf(pid_t process) {
    const std::string text = fileOf(process, "cmdline"); // a NUL ends each word
    std::vector<std::string> words;
    for (std::string_view rest = text; !rest.empty();) {
        words.emplace_back(rest.substr(0, rest.find('\0')));
        rest.remove_prefix(std::min(rest.size(), words.back().size() + 1));
    }
    return words;
}

std::string programNameOf(pid_t process) {
    const std::string name = fileOf(process, "comm");
    return name.substr(0, name.find('\n'));
}

std::vector<std::string> statusNumbersOf(pid_t process, std::string_view line) {
    const std::string status = fileOf(process, "status");
    const std::string name = "\n" + std::string(line) + ":\t";
    const std::size_t place = status.find(name);
    if (place == std::string::npos) {
        return {};
    }
    const std::size_t start = place + name.size();
    std::istringstream numbers(status.substr(start, status.find('\n', start) - start));
    return {std::istream_iterator<std::string>(numbers), {}};
}

std::string statusNumberOf(pid_t process, std::string_view line) {
    const auto numbers = statusNumbersOf(process, line);
    return numbers.empty() ? std::string() : numbers.front();
}

bool isRunning(pid_t process) {
    return ::kill(process, 0) == 0 || errno != ESRCH;
}

pid_t parentOf(pid_t process) {
    return wholeNumber<pid_t>(statusNumberOf(process, "PPid")).value_or(0);
}

bool isInContainer(pid_t process) {
    // The process's number in each namespace that it belongs to, ours first.
    return statusNumbersOf(process, "NSpid").size() > 1;
}

} // namespace platform
