#include "platform/posix/TemporaryFolder.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {

namespace {

namespace fs = std::filesystem;

Status failure(int error) {
    return Status::ofErrno("cannot make", "a folder for temporary files", error);
}

void removeWhole(const std::string& path) {
    std::error_code ignored; // nothing depends on it, and the system cleans its folders for temporary files
    fs::remove_all(path, ignored);
}

/// A folder, held open. It is locked unless its file system has no locks.
struct HeldFolder {
    FileDescriptor folder;
    int error = 0; ///< errno's value when it could not be opened or locked

    explicit HeldFolder(const fs::path& path)
        : folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)) {
        if (!folder.isOpen() || ::flock(folder.get(), LOCK_EX | LOCK_NB) != 0) {
            error = errno;
        }
    }
};

/// Removes a folder unless it is another user's, or its owner is still alive and holds its lock.
void removeIfAbandoned(const fs::path& path) {
    const HeldFolder held(path);

    struct stat status {};

    if (held.error == 0 && ::fstat(held.folder.get(), &status) == 0 && status.st_uid == ::geteuid()) {
        removeWhole(path);
    }
}

/// What mkdtemp(3) replaces.
constexpr std::string_view random = "XXXXXX";

/// Removes what killed processes have left in `place` under names that begin with `start`.
void sweep(const fs::path& place, const std::string& start) {
    std::error_code error;
    for (fs::directory_iterator entry(place, error), end; !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename();
        if (name.starts_with(start) && name.size() == start.size() + random.size()) {
            removeIfAbandoned(entry->path());
        }
    }
}

} // namespace

Result<TemporaryFolder> TemporaryFolder::make(const std::string& kind) {
    std::error_code error;
    const fs::path place = fs::temp_directory_path(error);
    return error ? failure(error.value()) : makeIn(place, kind);
}

Result<TemporaryFolder> TemporaryFolder::makeInMemory(const std::string& kind) {
    auto folder = makeIn("/dev/shm", kind);
    return folder.isOk() ? std::move(folder) : make(kind);
}

Result<TemporaryFolder> TemporaryFolder::makeIn(const std::string& place, const std::string& kind) {
    const std::string start = "brindle-" + kind + "-";
    sweep(place, start);
    constexpr int mostTries = 100;
    for (int tries = 0; tries < mostTries; ++tries) {
        std::string path = fs::path(place) / (start + std::string(random));
        if (::mkdtemp(path.data()) == nullptr) {
            return failure(errno);
        }
        HeldFolder held(path);
        if (!held.folder.isOpen() && held.error != ENOENT) {
            removeWhole(path);
            return failure(held.error);
        }
        // Another process may have swept the folder before it was locked; then start again.
        if (held.error != EWOULDBLOCK && ::access(path.c_str(), F_OK) == 0) {
            return TemporaryFolder(std::move(path), std::move(held.folder));
        }
    }
    return failure(EAGAIN);
}

TemporaryFolder::TemporaryFolder(std::string path, FileDescriptor lock)
    : path_(std::move(path)), lock_(std::move(lock)) {}

TemporaryFolder::TemporaryFolder(TemporaryFolder&& other) noexcept
    : path_(std::exchange(other.path_, std::string())), lock_(std::move(other.lock_)) {}

TemporaryFolder::~TemporaryFolder() {
    if (!path_.empty()) {
        removeWhole(path_);
    }
}

} // namespace platform
