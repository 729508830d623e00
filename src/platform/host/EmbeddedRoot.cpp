#include "platform/host/EmbeddedRoot.h"

#include "platform/foundation/SystemPaths.h"
#include "platform/host/RootContents.h"
#include "platform/host/UserFiles.h"
#include "platform/netinfo/Store.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/posix/WholeFile.h"
#include "platform/samba/SambaAccounts.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace platform {

namespace {

namespace fs = std::filesystem;

constexpr const char* exampleFolder = "/Shared/Example";

Status failure(const std::string& what, const std::string& why) {
    return Status::failure("cannot make", what,
                           why + "; choose a folder that you may write to with --root DIR or BRINDLE_ROOT");
}

/// Keeps other programs from making the same root until the descriptor is closed. The folder itself is
/// locked, so that no lock file stays behind.
Result<FileDescriptor> lockFolder(const std::string& folder) {
    FileDescriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    while (!descriptor.isOpen() || ::flock(descriptor.get(), LOCK_EX) != 0) {
        if (!descriptor.isOpen() || errno != EINTR) {
            return failure(folder, std::strerror(errno));
        }
    }
    return descriptor;
}

Status makeFolder(const std::string& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    return error ? failure(folder, error.message()) : Status();
}

Status makeFile(const std::string& file, const std::string& text) {
    std::error_code ignored;
    if (fs::exists(fs::symlink_status(file, ignored))) {
        return {};
    }
    if (Status status = makeFolder(fs::path(file).parent_path()); !status.isOk()) {
        return status;
    }
    const Status status = writeWholeFile(file, text);
    return status.isOk() ? status : failure(file, std::string(status.why()));
}

/// Makes each folder and file except the store. The settings name the root `named`. The store comes last,
/// because a root that has one counts as complete.
Status makeFiles(const EmbeddedRoot& root, const std::string& named) {
    Status status = makeFolder(root.folder() + exampleFolder);
    if (status.isOk()) {
        status = makeFile(root.map(systempath::smbConf), sampleSmbConf(named + exampleFolder));
    }
    if (status.isOk()) {
        status = makeFile(root.map(systempath::appleFileServer), sampleAppleFileServerPlist());
    }
    return status.isOk() ? SambaAccounts(root.sambaPaths()).makeFolders() : status;
}

/// Makes the store under another name and renames it, so that it is never there half filled.
Status makeStoreFile(const std::string& file) {
    const std::string unfinished = file + ".new";
    std::error_code ignored;
    fs::remove(unfinished, ignored);
    fs::remove(unfinished + "-journal", ignored);
    if (Status status = makeStore(unfinished); !status.isOk()) {
        return failure(file, status.text());
    }
    return ::rename(unfinished.c_str(), file.c_str()) == 0 ? Status() : failure(file, std::strerror(errno));
}

} // namespace

EmbeddedRoot::EmbeddedRoot(const std::string& folder) {
    std::error_code ignored;
    folder_ = fs::absolute(folder, ignored).lexically_normal().string();
    while (folder_.size() > 1 && folder_.ends_with('/')) {
        folder_.pop_back();
    }
}

std::string EmbeddedRoot::defaultFolder() {
    if (const char* root = std::getenv("BRINDLE_ROOT"); root != nullptr && *root != '\0') {
        return root;
    }
    const char* data = std::getenv("XDG_DATA_HOME");
    // A relative path in this variable must be ignored.
    return (data != nullptr && *data == '/' ? std::string(data) : homeFolder() + "/.local/share") +
           "/brindle";
}

std::string EmbeddedRoot::storeFile() const {
    return folder_ + "/" + storeName;
}

SambaPaths EmbeddedRoot::sambaPaths() const {
    return {folder_ + "/samba", map(systempath::smbConf), storeFile()};
}

std::string EmbeddedRoot::map(const std::string& path) const {
    return path == systempath::smbConf || path == systempath::appleFileServer ? folder_ + path : path;
}

Status EmbeddedRoot::makeIfMissing(const std::string& folder) const {
    std::error_code ignored;
    if (fs::exists(storeFile(), ignored)) {
        return Store::checkVersion(storeFile());
    }
    if (Status status = makeFolder(folder_); !status.isOk()) {
        return status;
    }
    const auto lock = lockFolder(folder_);
    if (!lock.isOk() ||
        fs::exists(storeFile(), ignored)) { // or another program has made it while this one waited
        return lock.status();
    }
    Status status = makeFiles(*this, folder);
    if (status.isOk()) {
        status = makeStoreFile(storeFile());
    }
    if (!status.isOk()) {
        return status;
    }
    ::fsync(lock->get()); // so that the rename survives a power failure
    return SambaAccounts(sambaPaths()).make();
}

} // namespace platform
