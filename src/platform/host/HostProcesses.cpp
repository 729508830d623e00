#include "platform/host/HostProcesses.h"

#include "platform/foundation/NSString.h"
#include "platform/host/EmbeddedRoot.h"
#include "platform/host/SambaAccounts.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>
#include <vector>

#include <unistd.h>

namespace platform {

namespace {

std::string readAll(std::FILE* stream) {
    std::string bytes;
    std::array<char, 4096> buffer{};
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), stream)) {
        bytes.append(buffer.data(), count);
    }
    return bytes;
}

std::string fileOfProcess(const std::string& processId, const char* name) {
    std::ifstream in("/proc/" + processId + "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// The first number after `label` in /proc/PID/status; none when the process is gone.
std::string statusNumber(const std::string& processId, std::string_view label) {
    const std::string status = fileOfProcess(processId, "status");
    const std::size_t place = status.find("\n" + std::string(label) + ":\t");
    if (place == std::string::npos) {
        return {};
    }
    const std::size_t start = place + label.size() + 3;
    return status.substr(start, status.find_first_of("\t\n", start) - start);
}

bool isProcessId(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

/// Started as `smbd ... -s CONFIGURATION` by this user. The command line can be read whoever the process
/// belongs to.
bool wasStartedWith(const std::string& processId, const std::string& configuration) {
    const auto words =
        componentsSeparatedByString(fileOfProcess(processId, "cmdline"), std::string_view("\0", 1));
    if (std::filesystem::path(words.front()).filename() != "smbd" ||
        statusNumber(processId, "Uid") != std::to_string(::getuid())) {
        return false;
    }
    std::error_code ignored;
    const auto wanted = std::filesystem::weakly_canonical(configuration, ignored);
    for (std::size_t index = 1; index + 1 < words.size(); ++index) {
        if (words[index] == "-s" && std::filesystem::weakly_canonical(words[index + 1], ignored) == wanted) {
            return true;
        }
    }
    return false;
}

} // namespace

std::FILE* HostProcesses::open(const std::string& command, const char* mode) {
    // What a terminal exports for its own ps would cut the names off that a listing looks for, or move its
    // columns.
    const std::string plain = "unset COLUMNS PS_FORMAT PS_PERSONALITY; " + command;
    std::FILE* pipe = ::popen(plain.c_str(), mode);
    if (pipe == nullptr) {
        return nullptr;
    }
    const std::string listing = readAll(pipe);
    const int status = ::pclose(pipe);
    std::FILE* filtered = std::tmpfile();
    if (filtered == nullptr) {
        return nullptr;
    }
    std::string_view rest = listing;
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        const std::string_view line = rest.substr(0, end);
        const std::string_view whole = rest.substr(0, end == std::string_view::npos ? end : end + 1);
        if (maySignal_(std::string(line)) &&
            std::fwrite(whole.data(), 1, whole.size(), filtered) != whole.size()) {
            const int error = errno;
            std::fclose(filtered);
            errno = error;
            return nullptr;
        }
        rest.remove_prefix(whole.size());
    }
    std::rewind(filtered);
    statuses_[filtered] = status;
    return filtered;
}

int HostProcesses::close(std::FILE* stream) {
    const auto place = statuses_.find(stream);
    if (place == statuses_.end()) {
        errno = EINVAL;
        return -1;
    }
    const int status = place->second;
    statuses_.erase(place);
    std::fclose(stream);
    return status;
}

bool isServerOfRoot(const std::string& processId, const std::string& rootFolder) {
    const std::string configuration = SambaAccounts(EmbeddedRoot(rootFolder)).configurationFile();
    // A process that serves a connection may have given itself another command line; its ancestor has not.
    constexpr int generations = 4;
    std::string process = processId;
    for (int generation = 0; generation < generations && isProcessId(process) && process != "0";
         ++generation) {
        if (!statusNumber(process, "Uid").empty() && wasStartedWith(process, configuration)) {
            return true;
        }
        if (!fileOfProcess(process, "comm").starts_with("smbd")) {
            return false;
        }
        process = statusNumber(process, "PPid");
    }
    return false;
}

} // namespace platform
