#include "platform/host/EmbeddedRoot.h"

#include "platform/foundation/NSFileManager.h"
#include "platform/host/RootContents.h"
#include "platform/host/SambaAccounts.h"
#include "platform/netinfo/Store.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <unistd.h>

namespace platform {

namespace {

namespace fs = std::filesystem;

constexpr const char* smbConf = "/etc/smb.conf";
constexpr const char* appleFileServerPlist = "/Library/Preferences/com.apple.AppleFileServer.plist";
constexpr const char* exampleFolder = "/Shared/Example";

[[noreturn]] void fail(const std::string& what, const std::string& why) {
    throw std::runtime_error("cannot make " + what + ": " + why +
                             "; choose a folder that you may write to with --root DIR or BRINDLE_ROOT");
}

/// Keeps other programs from making the same root meanwhile. The folder itself is locked, so that no file is
/// left of it.
class FolderLock {
  public:
    explicit FolderLock(const std::string& folder)
        : descriptor_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        while (descriptor_ < 0 || ::flock(descriptor_, LOCK_EX) != 0) {
            if (descriptor_ < 0 || errno != EINTR) {
                const std::string why = std::strerror(errno);
                if (descriptor_ >= 0) {
                    ::close(descriptor_);
                }
                fail(folder, why);
            }
        }
    }

    ~FolderLock() { ::close(descriptor_); }

    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    /// Makes what was renamed in the folder last through a power cut.
    void flush() const { ::fsync(descriptor_); }

  private:
    int descriptor_;
};

void makeFolder(const std::string& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) {
        fail(folder, error.message());
    }
}

void makeFile(const std::string& file, const std::string& text) {
    std::error_code ignored;
    if (fs::exists(fs::symlink_status(file, ignored))) {
        return;
    }
    makeFolder(fs::path(file).parent_path());
    if (!writeToFileAtomically(file, text, 0644)) {
        fail(file, std::strerror(errno));
    }
}

std::string homeFolder() {
    if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') {
        return home;
    }
    const passwd* entry = ::getpwuid(::getuid());
    return entry == nullptr ? "/" : entry->pw_dir;
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
    // The variable's rules say that a relative path in it is to be ignored.
    return (data != nullptr && *data == '/' ? std::string(data) : homeFolder() + "/.local/share") +
           "/brindle";
}

std::string EmbeddedRoot::storeFile() const {
    return folder_ + "/" + kStoreName;
}

std::string EmbeddedRoot::sambaFolder() const {
    return folder_ + "/samba";
}

std::string EmbeddedRoot::map(const std::string& path) const {
    return path == smbConf || path == appleFileServerPlist ? folder_ + path : path;
}

void EmbeddedRoot::makeIfMissing() const {
    std::error_code ignored;
    if (fs::exists(storeFile(), ignored)) {
        return;
    }
    makeFolder(folder_);
    const FolderLock lock(folder_);
    if (fs::exists(storeFile(), ignored)) {
        return; // another program made it while this one waited
    }
    makeFolder(folder_ + exampleFolder);
    makeFile(map(smbConf), sampleSmbConf(folder_ + exampleFolder));
    makeFile(map(appleFileServerPlist), sampleAppleFileServerPlist());
    const SambaAccounts accounts(*this);
    if (const std::string failure = accounts.makeFolders(); !failure.empty()) {
        fail(folder_, failure);
    }
    // The store comes last and at once: a root that has one is whole.
    const std::string unfinished = storeFile() + ".new";
    fs::remove(unfinished, ignored);
    fs::remove(unfinished + "-journal", ignored);
    try {
        makeStore(unfinished);
    } catch (const StoreError& error) {
        fail(storeFile(), error.what());
    }
    if (::rename(unfinished.c_str(), storeFile().c_str()) != 0) {
        fail(storeFile(), std::strerror(errno));
    }
    lock.flush();
    if (const std::string failure = accounts.make(); !failure.empty()) {
        fail(sambaFolder(), failure);
    }
}

} // namespace platform
