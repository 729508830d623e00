#include "platform/host/HostProcesses.h"

#include "platform/host/EmbeddedRoot.h"
#include "platform/posix/ProcessTable.h"
#include "platform/samba/SambaAccounts.h"
#include "platform/samba/ServerProcesses.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <string_view>

namespace platform {

namespace {

/// 0 when the string is not a number.
pid_t processOf(const std::string& processId) {
    pid_t process = 0;
    const char* const end = processId.data() + processId.size();
    const auto [rest, error] = std::from_chars(processId.data(), end, process);
    return error == std::errc() && rest == end ? process : 0;
}

std::string readAll(std::FILE* stream) {
    std::string bytes;
    std::array<char, 4096> buffer{};
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), stream)) {
        bytes.append(buffer.data(), count);
    }
    return bytes;
}

} // namespace

std::FILE* HostProcesses::open(const std::string& command, const char* mode) {
    // If a terminal exports these variables, ps truncates the names that a listing searches for, or moves its
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
    const std::string configuration =
        SambaAccounts(EmbeddedRoot(rootFolder).sambaPaths()).configurationFile();
    pid_t process = processOf(processId);
    // A process that serves a connection may have changed its command line; its ancestor has not.
    constexpr int generations = 4;
    for (int generation = 0; generation < generations && process > 0; ++generation) {
        if (isServerWith(process, configuration)) {
            return true;
        }
        if (!programNameOf(process).starts_with("smbd")) {
            return false;
        }
        process = parentOf(process);
    }
    return false;
}

bool isServerOfComputer(const std::string& processId) {
    const pid_t process = processOf(processId);
    return process > 0 && isComputersServer(process);
}

} // namespace platform
