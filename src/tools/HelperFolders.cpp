#include "tools/HelperFolders.h"

#include "platform/posix/FileDescriptor.h"
#include "platform/posix/WholeNumber.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <string_view>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tools {

using platform::FileDescriptor;
using platform::Result;
using platform::Status;

namespace {

/// These folders and everything below them are not for sharing. The last four are links into /usr on most
/// computers, but not on all.
constexpr std::array<std::string_view, 11> systemTrees = {"/etc", "/usr", "/boot", "/dev", "/proc", "/sys",
                                                          "/run", "/bin", "/sbin", "/lib", "/lib64"};
/// Nor are these when root makes the change: programs rely on what they keep there.
constexpr std::array<std::string_view, 2> treesOfComputer = {"/var/lib", "/var/spool"};
/// The exception: removable volumes.
constexpr std::string_view volumes = "/run/media/";
/// Folders in these may be shared, but programs of all users rely on the mode of these folders themselves.
/// /srv and /mnt are left to the administrator.
constexpr std::array<std::string_view, 12> systemFolders = {
    "/",        "/var", "/var/cache", "/var/lib", "/var/log", "/var/spool",
    "/var/tmp", "/tmp", "/opt",       "/media",   "/home",    "/root"};
/// Whoever may write to these can log on or sign as their owner, and ssh refuses keys in a folder that others
/// may write to.
constexpr std::array<std::string_view, 2> keyFolders = {".ssh", ".gnupg"};

bool isKeyFolder(const std::string& path) {
    return std::ranges::any_of(std::filesystem::path(path), [](const std::filesystem::path& name) {
        return std::ranges::find(keyFolders, name.string()) != keyFolders.end();
    });
}

bool isSameFolder(const struct stat& status, std::string_view path) {
    struct stat other {};

    return ::stat(std::string(path).c_str(), &other) == 0 && other.st_dev == status.st_dev &&
           other.st_ino == status.st_ino;
}

constexpr const char* cannotChange = "cannot change";

/// An open folder that may be changed.
struct OpenFolder {
    FileDescriptor descriptor;

    struct stat status {};

    /// A path to the open folder itself, even if the path at which it was found has changed.
    [[nodiscard]] std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor.get()); }
};

/// Fails when anybody could replace the folder at `path`, which holds no links: root might then change
/// another folder than the administrator looked at. Folders in one like /tmp are safe, because there users
/// may only replace what is theirs.
Status checkParents(const std::string& path, const std::string& asNamed) {
    std::filesystem::path parent = std::filesystem::path(path).parent_path();
    for (; parent != parent.root_path(); parent = parent.parent_path()) {
        struct stat status {};

        if (::stat(parent.c_str(), &status) == 0 && (status.st_mode & S_IWOTH) != 0 &&
            (status.st_mode & S_ISVTX) == 0) {
            return Status::failure(cannotChange, asNamed,
                                   "could be replaced by anybody, because everyone may write to " +
                                       parent.string() + "; change that first");
        }
    }
    return {};
}

Result<OpenFolder> openFolder(const std::string& path, FolderHost host) {
    OpenFolder folder;
    // O_PATH, because the owner of a folder may change one that nobody is allowed to read.
    folder.descriptor = FileDescriptor(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    std::array<char, 4096> resolved{};
    ssize_t length = -1;
    if (folder.descriptor.isOpen() && ::fstat(folder.descriptor.get(), &folder.status) == 0) {
        length = ::readlink(folder.path().c_str(), resolved.data(), resolved.size());
    }
    if (length < 0) {
        return Status::ofErrno(cannotChange, path, errno);
    }
    const std::string real(resolved.data(), static_cast<std::size_t>(length));
    if (isSystemFolder(real, folder.status, host)) {
        return Status::failure(cannotChange, path,
                               "is a folder of the system and stays as it is; share another one");
    }
    if (Status status = host == FolderHost::Computer ? checkParents(real, path) : Status(); !status.isOk()) {
        return status;
    }
    return folder;
}

/// The number with which chown leaves the owner or group as it is. No account may have it.
template <class Id>
constexpr Id unchanged = static_cast<Id>(-1);

} // namespace

bool isSystemFolder(const std::string& path, const struct stat& status, FolderHost host) {
    const auto isInTree = [&](std::string_view tree) {
        const bool isBelow = path.starts_with(tree) && path.size() > tree.size() && path[tree.size()] == '/';
        return path == tree || (isBelow && !path.starts_with(volumes)) || isSameFolder(status, tree);
    };
    const bool isOfComputer =
        host == FolderHost::Computer && (isKeyFolder(path) || std::ranges::any_of(treesOfComputer, isInTree));
    return isOfComputer || std::ranges::any_of(systemTrees, isInTree) ||
           std::ranges::any_of(systemFolders, [&](std::string_view each) {
               return path == each || isSameFolder(status, each);
           });
}

bool isSystemFolder(const std::string& folder, FolderHost host) {
    std::error_code error;
    const std::filesystem::path real = std::filesystem::weakly_canonical(folder, error);

    struct stat status {}; // stays zero, and so no folder's, where there is none

    static_cast<void>(::stat(folder.c_str(), &status));
    return isSystemFolder(error ? std::filesystem::path(folder).lexically_normal().string() : real.string(),
                          status, host);
}

namespace {

/// An open folder and what is to be done to it.
struct OpenOrder {
    OpenFolder folder;
    FolderOrder order;
};

Result<OpenOrder> withFolder(FolderOrder order, const std::string& path, FolderHost host) {
    auto opened = openFolder(path, host);
    if (!opened.isOk()) {
        return opened.status();
    }
    order.status = opened->status;
    return OpenOrder{std::move(*opened), order};
}

/// The number that was found for `name`, which names a `kind` of account.
Result<unsigned> found(const Result<std::optional<unsigned>>& number, const std::string& kind,
                       const std::string& name) {
    if (!number.isOk()) {
        return number.status();
    }
    if (number->value_or(unchanged<unsigned>) == unchanged<unsigned>) {
        return Status::failure("cannot find " + kind, name,
                               "there is no such " + kind + "; choose one from the list");
    }
    return **number;
}

Result<OpenOrder> ownerOrder(const std::string& ownerAndGroup, const std::string& folder,
                             const platform::DirectoryAccounts& accounts, FolderHost host) {
    FolderOrder order;
    const std::size_t colon = ownerAndGroup.find(':');
    const std::string owner = ownerAndGroup.substr(0, colon);
    const std::string group = colon == std::string::npos ? "" : ownerAndGroup.substr(colon + 1);
    if (!owner.empty()) {
        const auto user = found(accounts.userId(owner), "user", owner);
        if (!user.isOk()) {
            return user.status();
        }
        order.owner = *user;
    }
    if (!group.empty()) {
        const auto number = found(accounts.groupId(group), "group", group);
        if (!number.isOk()) {
            return number.status();
        }
        order.group = *number;
    }
    return withFolder(order, folder, host);
}

Result<OpenOrder> modeOrder(const std::string& mode, const std::string& folder, FolderHost host) {
    constexpr unsigned largest = 0777;
    const auto bits = platform::wholeNumber<unsigned>(mode, 8);
    if (!bits || *bits > largest) {
        return Status::failure("cannot use", mode, "is not a mode; give one from 0 to 777 in octal");
    }
    auto opened = withFolder({}, folder, host);
    if (opened.isOk()) {
        // The order is about three classes of users: what a shared folder's group and its visitors rely on
        // stays.
        opened->order.mode = (opened->order.status.st_mode & 07000U) | *bits;
    }
    return opened;
}

bool isGroupOfCaller(gid_t group) {
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(0, ::getgroups(0, nullptr))));
    groups.resize(
        static_cast<std::size_t>(std::max(0, ::getgroups(static_cast<int>(groups.size()), groups.data()))));
    return group == ::getegid() || std::ranges::find(groups, group) != groups.end();
}

/// Whether the system would let `caller` carry the order out.
bool mayChange(const FolderOrder& order, uid_t caller) {
    if (caller == 0) {
        return true;
    }
    const gid_t group = order.group.value_or(order.status.st_gid);
    return order.status.st_uid == caller && order.owner.value_or(caller) == caller &&
           (group == order.status.st_gid || isGroupOfCaller(group));
}

Result<FolderOrder> examined(const Result<OpenOrder>& opened, const std::string& folder, uid_t caller) {
    if (!opened.isOk()) {
        return opened.status();
    }
    return mayChange(opened->order, caller) ? Result(opened->order)
                                            : Status::ofErrno(cannotChange, folder, EPERM);
}

} // namespace

Result<FolderOrder> examineOwner(const std::string& ownerAndGroup, const std::string& folder,
                                 const platform::DirectoryAccounts& accounts, uid_t caller, FolderHost host) {
    return examined(ownerOrder(ownerAndGroup, folder, accounts, host), folder, caller);
}

Result<FolderOrder> examineMode(const std::string& mode, const std::string& folder, uid_t caller,
                                FolderHost host) {
    return examined(modeOrder(mode, folder, host), folder, caller);
}

Status changeOwner(const std::string& ownerAndGroup, const std::string& folder,
                   const platform::DirectoryAccounts& accounts, FolderHost host) {
    const auto opened = ownerOrder(ownerAndGroup, folder, accounts, host);
    if (!opened.isOk()) {
        return opened.status();
    }
    if (::fchownat(opened->folder.descriptor.get(), "", opened->order.owner.value_or(unchanged<uid_t>),
                   opened->order.group.value_or(unchanged<gid_t>), AT_EMPTY_PATH) != 0) {
        return Status::ofErrno(cannotChange, folder, errno);
    }
    return {};
}

Status changeMode(const std::string& mode, const std::string& folder, FolderHost host) {
    const auto opened = modeOrder(mode, folder, host);
    if (!opened.isOk()) {
        return opened.status();
    }
    if (::chmod(opened->folder.path().c_str(), *opened->order.mode) != 0) {
        return Status::ofErrno(cannotChange, folder, errno);
    }
    return {};
}

Status checkNotReplaceable(const std::string& folder) {
    std::error_code error;
    const std::filesystem::path real = std::filesystem::canonical(folder, error);
    return error ? Status() : checkParents(real, folder);
}

} // namespace tools
