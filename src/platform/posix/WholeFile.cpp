#include "platform/posix/WholeFile.h"

#include "platform/posix/InputOutput.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <system_error>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <linux/limits.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace platform {

namespace {

namespace fs = std::filesystem;

constexpr const char* cannotWrite = "cannot write";
constexpr std::string_view temporaryStart = ".brindle-";
constexpr std::string_view temporaryEnd = ".tmp";

/// `path` with a symbolic link at its end followed, link by link, to the file that it names, which need not
/// exist.
Result<fs::path> followLinks(fs::path path) {
    constexpr int mostLinks = 40;
    for (int links = 0; links < mostLinks; ++links) {
        std::error_code error;
        const fs::path destination = fs::read_symlink(path, error);
        if (error) {
            return path; // not a link, or missing
        }
        path = path.parent_path() / destination; // an absolute destination replaces the whole path
    }
    return Status::ofErrno(cannotWrite, path, ELOOP);
}

/// Locks a temporary file. Returns false when another process holds the lock, or the file system has no
/// locks.
bool lock(int file) {
    return ::flock(file, LOCK_EX | LOCK_NB) == 0;
}

/// Removes a temporary file unless its writer is still alive and holds its lock.
void removeIfAbandoned(int folder, const char* name) {
    const FileDescriptor file(::openat(folder, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));

    struct stat status {};

    if (file.isOpen() && ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode) && lock(file.get())) {
        ::unlinkat(folder, name, 0);
    }
}

/// Removes the temporary files of killed writers. One that cannot be removed does no harm.
void sweep(int folder) {
    const int copy = ::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(copy < 0 ? nullptr : ::fdopendir(copy), &::closedir);
    while (const dirent* entry = entries ? ::readdir(entries.get()) : nullptr) {
        const std::string_view name(&entry->d_name[0]);
        if (name.starts_with(temporaryStart) && name.ends_with(temporaryEnd)) {
            removeIfAbandoned(folder, &entry->d_name[0]);
        }
    }
}

/// Whether the file still has a name: another writer may have removed it before it was locked.
bool hasName(int file) {
    struct stat status {};

    return ::fstat(file, &status) == 0 && status.st_nlink > 0;
}

/// Gives a file the access control list (acl(5)) of the file `name`: none when that has none, even if its
/// folder gives one to new files. Returns false on failure.
bool copyAccessList(const FilePlace& place, const std::string& name, int file) {
    constexpr const char* attribute = "system.posix_acl_access";
    const FileDescriptor original(::openat(place.folder(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    std::array<char, XATTR_SIZE_MAX> list{};
    const ssize_t size =
        original.isOpen() ? ::fgetxattr(original.get(), attribute, list.data(), list.size()) : -1;
    if (size >= 0) {
        return ::fsetxattr(file, attribute, list.data(), static_cast<std::size_t>(size), 0) == 0;
    }
    const auto isOneOf = [](std::initializer_list<int> errors) {
        return std::ranges::find(errors, errno) != errors.end();
    };
    // A list that may not be read is not kept.
    return isOneOf({EACCES, ENOENT, ENODATA, ENOTSUP}) &&
           (::fremovexattr(file, attribute) == 0 || isOneOf({ENODATA, ENOTSUP}));
}

} // namespace

Status writeWholeFile(const std::string& path, std::string_view bytes, const WholeFileRules& rules) {
    const auto place = FilePlace::find(path, rules.links);
    if (!place.isOk()) {
        return place.status();
    }
    auto file = WaitingFile::write(*place, place->name(), bytes, std::nullopt, rules.mode);
    return file.isOk() ? file->replace() : file.status();
}

FilePlace::FilePlace(FileDescriptor folder, std::string folderPath, std::string name)
    : folder_(std::move(folder)), folderPath_(std::move(folderPath)), name_(std::move(name)) {}

Result<FilePlace> FilePlace::find(const std::string& path, LinkRule links) {
    const auto file = links == LinkRule::Follow ? followLinks(path) : fs::path(path);
    if (!file.isOk()) {
        return file.status();
    }
    const std::string folder = file->has_parent_path() ? file->parent_path().string() : ".";
    FileDescriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!descriptor.isOpen()) {
        return Status::ofErrno(cannotWrite, path, errno);
    }
    return FilePlace(std::move(descriptor), folder, file->filename());
}

WaitingFile::WaitingFile(WaitingFile&& other) noexcept
    : place_(other.place_), name_(std::move(other.name_)),
      temporary_(std::exchange(other.temporary_, std::string())), file_(std::move(other.file_)) {}

WaitingFile::~WaitingFile() {
    if (!temporary_.empty()) {
        ::unlinkat(place_->folder(), temporary_.c_str(), 0);
    }
}

Result<WaitingFile> WaitingFile::write(const FilePlace& place, const std::string& name,
                                       std::string_view bytes, const std::optional<struct stat>& like,
                                       mode_t mode) {
    sweep(place.folder());
    WaitingFile file(place, name);
    // Nobody else may read the new file before it has the owner and mode of the file that it replaces.
    Status status = file.create(like ? 0600 : mode);
    if (status.isOk()) {
        status = file.fill(bytes, like);
    }
    return status.isOk() ? Result(std::move(file)) : status;
}

Status WaitingFile::failure(int error) const {
    return Status::ofErrno(cannotWrite, place_->pathOf(name_), error);
}

Status WaitingFile::create(mode_t mode) {
    constexpr int mostTries = 100;
    for (int tries = 0; tries < mostTries; ++tries) {
        std::uint64_t number = 0;
        if (::getrandom(&number, sizeof number, 0) != static_cast<ssize_t>(sizeof number)) {
            return failure(errno);
        }
        const std::string name =
            std::string(temporaryStart) + std::to_string(number) + std::string(temporaryEnd);
        file_ = FileDescriptor(::openat(place_->folder(), name.c_str(),
                                        O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
        if (!file_.isOpen()) {
            return failure(errno);
        }
        // Another writer may have swept the folder meanwhile. If it holds the lock or has removed the file,
        // start again; a file system without locks is no reason to.
        if ((lock(file_.get()) || errno != EWOULDBLOCK) && hasName(file_.get())) {
            temporary_ = name;
            return {};
        }
    }
    return failure(EAGAIN);
}

Status WaitingFile::fill(std::string_view bytes, const std::optional<struct stat>& like) {
    Status status = writeAll(file_.get(), bytes, place_->pathOf(name_));
    if (!status.isOk()) {
        return status;
    }
    // The owner comes before the mode, because changing the owner may clear bits of the mode. With a list,
    // the mode's bits for the group are the list's limit: without it they would give the group more. That is
    // why a file with another name, a backup, gets the list of the place's file, too.
    if ((like && ::fchown(file_.get(), like->st_uid, like->st_gid) != 0) ||
        (like && !copyAccessList(*place_, place_->name(), file_.get())) ||
        (like && ::fchmod(file_.get(), like->st_mode & 07777U) != 0) || ::fsync(file_.get()) != 0) {
        return failure(errno);
    }
    return {};
}

Status WaitingFile::replace() {
    if (::renameat(place_->folder(), temporary_.c_str(), place_->folder(), name_.c_str()) != 0) {
        return failure(errno);
    }
    temporary_.clear();
    ::fsync(place_->folder()); // some file systems cannot do this; the file is complete in either case
    return {};
}

Status WaitingFile::takeFreeName() {
    if (::renameat2(place_->folder(), temporary_.c_str(), place_->folder(), name_.c_str(),
                    RENAME_NOREPLACE) == 0) {
        temporary_.clear();
        return {};
    }
    const bool cannotTell = errno == EINVAL || errno == ENOSYS;
    return cannotTell ? replace() : errno == EEXIST ? Status() : failure(errno);
}

} // namespace platform
