#include "platform/foundation/NSFileManager.h"

#include "platform/foundation/Host.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Owns a file descriptor.
class Descriptor {
  public:
    explicit Descriptor(int value) : value_(value) {}

    ~Descriptor() { close(); }

    Descriptor(Descriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor& operator=(Descriptor&&) = delete;

    [[nodiscard]] int get() const { return value_; }

    [[nodiscard]] bool isOpen() const { return value_ >= 0; }

    /// False with errno set when the system reports a late write error.
    bool close() {
        const int value = std::exchange(value_, -1);
        return value < 0 || ::close(value) == 0;
    }

  private:
    int value_;
};

/// Removes a half-made file on every way out but the last one, and leaves errno as the failure set it.
class TemporaryFile {
  public:
    explicit TemporaryFile(std::string path) : path_(std::move(path)) {}

    ~TemporaryFile() {
        if (!path_.empty()) {
            const int error = errno;
            ::unlink(path_.c_str());
            errno = error;
        }
    }

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    [[nodiscard]] bool renameTo(const std::string& target) {
        if (::rename(path_.c_str(), target.c_str()) != 0) {
            return false;
        }
        path_.clear();
        return true;
    }

  private:
    std::string path_;
};

std::string temporaryNameIn(const std::string& folder) {
    std::uint64_t number = 0;
    if (::getrandom(&number, sizeof number, 0) < 0) {
        number = static_cast<std::uint64_t>(::getpid());
    }
    return folder + "/.brindle-" + std::to_string(number) + ".tmp";
}

bool writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) {
            return false;
        }
        bytes.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
    return true;
}

/// Makes the renaming last through a power cut. Some file systems cannot flush a folder; the file is whole
/// anyway.
void flushFolder(const std::string& folder) {
    const Descriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.isOpen()) {
        ::fsync(descriptor.get());
    }
}

} // namespace

std::optional<std::string> NSFileAttributes::ownerAccountName() const {
    return platform::Host::current().accountNames().userName(ownerAccountID);
}

std::optional<std::string> NSFileAttributes::groupOwnerAccountName() const {
    return platform::Host::current().accountNames().groupName(groupOwnerAccountID);
}

std::optional<NSFileAttributes> fileAttributesAtPath(const std::string& path) {
    struct stat status {};

    if (::stat(platform::Host::current().paths().map(path).c_str(), &status) != 0) {
        return std::nullopt;
    }
    return NSFileAttributes{static_cast<std::int32_t>(status.st_mode & 07777U), status.st_uid, status.st_gid};
}

NSFileContents contentsOfFile(const std::string& path) {
    const std::string file = platform::Host::current().paths().map(path);
    const Descriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (!descriptor.isOpen()) {
        return {std::nullopt, errno};
    }
    std::string bytes;

    struct stat status {};

    if (::fstat(descriptor.get(), &status) == 0 && S_ISREG(status.st_mode)) {
        bytes.reserve(static_cast<std::size_t>(status.st_size)); // a long file is not copied as it grows
    }
    std::array<char, 65536> buffer{};
    while (true) {
        const ssize_t count = ::read(descriptor.get(), buffer.data(), buffer.size());
        if (count > 0) {
            bytes.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (count == 0) {
            return {std::move(bytes), 0};
        } else if (errno != EINTR) {
            return {std::nullopt, errno};
        }
    }
}

bool writeToFileAtomically(const std::string& path, std::string_view bytes, unsigned mode) {
    const std::string folder = stringByDeletingLastPathComponent(path);
    const std::string temporaryName = temporaryNameIn(folder);
    Descriptor descriptor(
        ::open(temporaryName.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
    if (!descriptor.isOpen()) {
        return false;
    }
    TemporaryFile temporary(temporaryName);
    if (!writeAll(descriptor.get(), bytes) || ::fsync(descriptor.get()) != 0 || !descriptor.close() ||
        !temporary.renameTo(path)) {
        return false;
    }
    flushFolder(folder);
    return true;
}

bool removeFileAtPath(const std::string& path) {
    return ::unlink(path.c_str()) == 0;
}

std::string stringByExpandingTildeInPath(const std::string& path) {
    if (path != "~" && !path.starts_with("~/")) {
        return path;
    }
    return platform::Host::current().paths().home() + path.substr(1);
}

std::string stringByDeletingLastPathComponent(const std::string& path) {
    if (path.empty()) {
        return {};
    }
    const std::size_t end = path.find_last_not_of('/');
    const std::size_t slash = end == std::string::npos ? 0 : path.rfind('/', end);
    if (slash == std::string::npos) {
        return ".";
    }
    const std::size_t folderEnd = slash == 0 ? std::string::npos : path.find_last_not_of('/', slash);
    return folderEnd == std::string::npos ? "/" : path.substr(0, folderEnd + 1);
}

std::string lastPathComponent(const std::string& path) {
    const std::size_t end = path.find_last_not_of('/');
    if (end == std::string::npos) {
        return path.empty() ? "" : "/";
    }
    const std::size_t slash = path.rfind('/', end);
    const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
    return path.substr(start, end + 1 - start);
}
