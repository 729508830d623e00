#include "tools/ComputerLock.h"

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tools {

using platform::FileDescriptor;
using platform::Result;
using platform::Status;
using platform::Store;

namespace {

namespace fs = std::filesystem;

Status makeFolder(const std::string& folder) {
    std::error_code error;
    const bool isNew = fs::create_directories(folder, error);
    if (!error && isNew) {
        constexpr auto readableByAll = static_cast<fs::perms>(0755);
        fs::permissions(folder, readableByAll, error);
    }
    return error ? Status::failure("cannot make", folder, error.message()) : Status();
}

Result<FileDescriptor> lock(const std::string& path, int waitSeconds) {
    // Programs inherit the descriptor: see ComputerLock. Only root can open the file, so that nobody else can
    // block changes.
    FileDescriptor file(
        ::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW, 0600)); // NOLINT(android-cloexec-open)
    if (!file.isOpen()) {
        return Status::ofErrno("cannot open", path, errno);
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(waitSeconds);
    while (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) {
            return Status::ofErrno("cannot lock", path, errno);
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            return Status::failure("cannot change", "the computer's accounts",
                                   "another program has been changing them for " +
                                       std::to_string(waitSeconds) + " seconds; try again when it has ended");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return file;
}

/// Makes a store with only the records that always exist, under another name first, so that it is never there
/// half made.
Status makeStore(const std::string& file) {
    const std::string unfinished = file + ".new";
    std::error_code ignored;
    fs::remove(unfinished, ignored);
    fs::remove(unfinished + "-journal", ignored);
    {
        Store store(unfinished, Store::Opening::Create);
        store.addStandingRecords();
        if (Status status = store.commit(); !status.isOk()) {
            return status;
        }
    }
    constexpr mode_t readableByAll = 0644;
    if (::chmod(unfinished.c_str(), readableByAll) != 0 || ::rename(unfinished.c_str(), file.c_str()) != 0) {
        return Status::ofErrno("cannot make", file, errno);
    }
    return {};
}

} // namespace

Result<ComputerLock> ComputerLock::take(const platform::SystemFiles& files, int waitSeconds) {
    if (Status status = makeFolder(files.folder()); !status.isOk()) {
        return status;
    }
    auto locked = lock(files.lockFile(), waitSeconds);
    if (!locked.isOk()) {
        return locked.status();
    }
    std::error_code ignored;
    if (!fs::exists(files.storeFile(), ignored)) {
        if (Status status = makeStore(files.storeFile()); !status.isOk()) {
            return status;
        }
    }
    return ComputerLock(std::move(*locked));
}

} // namespace tools
