#include "platform/posix/InputOutput.h"

#include "platform/posix/Secret.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr const char* cannotRead = "cannot read";

ssize_t readSome(int descriptor, char* buffer, std::size_t size) {
    ssize_t count = 0;
    do {
        count = ::read(descriptor, buffer, size);
    } while (count < 0 && errno == EINTR);
    return count;
}

/// How many bytes to make room for at first: for a regular file its size and one more, so that growth is
/// noticed; for anything else as much as may come.
std::size_t firstRoom(int descriptor, std::size_t limit) {
    struct stat status {};

    const bool isFile = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    return isFile ? std::min(limit, static_cast<std::size_t>(status.st_size)) + 1 : limit + 1;
}

Result<std::string> readLimited(int descriptor, const std::string& name, std::size_t limit) {
    std::string bytes(firstRoom(descriptor, limit), '\0');
    std::size_t size = 0;
    while (size <= limit) {
        if (size == bytes.size()) {
            std::string larger(std::min(2 * size, limit + 1), '\0');
            std::ranges::copy(bytes, larger.begin());
            std::swap(bytes, larger);
            wipe(larger);
        }
        const ssize_t count = readSome(descriptor, bytes.data() + size, bytes.size() - size);
        if (count < 0) {
            const Status failure = Status::ofErrno(cannotRead, name, errno);
            wipe(bytes);
            return failure;
        }
        if (count == 0) {
            bytes.resize(size);
            return bytes;
        }
        size += static_cast<std::size_t>(count);
    }
    wipe(bytes);
    return Status::failure(cannotRead, name, "is longer than " + std::to_string(limit) + " bytes");
}

} // namespace

void openStandardDescriptors() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(descriptor, F_GETFD) < 0 && errno == EBADF) {
            // It gets this number, the lowest free one.
            static_cast<void>(descriptor == STDIN_FILENO ? ::open("/dev/null", O_RDONLY)
                                                         : ::open("/dev/full", O_WRONLY));
        }
    }
}

Result<Pipe> makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        return Status::ofErrno("cannot make a pipe", {}, errno);
    }
    return Pipe{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

Result<std::string> readAll(int descriptor, const std::string& name, std::size_t limit) {
    if (limit != noLimit) {
        return readLimited(descriptor, name, limit);
    }
    std::string bytes;

    struct stat status {};

    if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
        bytes.reserve(static_cast<std::size_t>(
            status.st_size)); // so that the string does not copy a long file as it grows
    }
    std::array<char, 65536> buffer{};
    while (true) {
        const ssize_t count = readSome(descriptor, buffer.data(), buffer.size());
        if (count < 0) {
            return Status::ofErrno(cannotRead, name, errno);
        }
        if (count == 0) {
            return bytes;
        }
        bytes.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

Result<std::string> readWholeFile(const std::string& path) {
    // Without O_NONBLOCK, opening a pipe would wait until somebody writes to it.
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));

    struct stat status {};

    if (!file.isOpen() || ::fstat(file.get(), &status) != 0) {
        return Status::ofErrno(cannotRead, path, errno);
    }
    if (S_ISDIR(status.st_mode)) {
        return Status::ofErrno(cannotRead, path, EISDIR);
    }
    if (!S_ISREG(status.st_mode)) {
        return Status::failure(cannotRead, path, "it is not a regular file");
    }
    if (static_cast<std::uintmax_t>(status.st_size) > largestWholeFile) {
        return Status::ofErrno(cannotRead, path, EFBIG);
    }
    return readAll(file.get(), path);
}

Status writeAll(int descriptor, std::string_view bytes, const std::string& name) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            return Status::ofErrno("cannot write", name, errno);
        }
        bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return {};
}

} // namespace platform
