#include "platform/host/HostProcesses.h"

#include "platform/posix/WholeNumber.h"

#include <array>
#include <cerrno>
#include <string_view>

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
        const auto process = wholeNumber<pid_t>(line);
        if (process && maySignal_(*process) &&
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

} // namespace platform
