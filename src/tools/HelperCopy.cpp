#include "tools/HelperCopy.h"

#include "platform/foundation/NSFileManager.h"
#include "platform/posix/FileDescriptor.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

using platform::FileDescriptor;

namespace {

constexpr mode_t kNewFileMode = 0644;

/// A failure inside the copy: what it was about, and why.
struct CopyFailure {
    std::string subject;
    std::string why;
};

[[noreturn]] void fail(const std::string& subject, int error = errno) {
    throw CopyFailure{subject, reason(error)};
}

struct stat statusOf(const FileDescriptor& file, const std::string& name) {
    struct stat status {};

    if (::fstat(file.get(), &status) != 0) {
        fail(name);
    }
    return status;
}

/// The one opening of the source: what is checked here is what is read later, whatever stands at the path by
/// then.
FileDescriptor openSource(const std::string& source, uid_t user) {
    // Without O_NONBLOCK a pipe at that path would keep the helper waiting.
    FileDescriptor file(::open(source.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file.isOpen()) {
        fail(source);
    }
    const struct stat status = statusOf(file, source);
    if (!S_ISREG(status.st_mode)) {
        throw CopyFailure{source, "is no regular file; name one"};
    }
    if (status.st_uid != user) {
        throw CopyFailure{source, "does not belong to the user who runs Brindle; name a file of that user's"};
    }
    return file;
}

/// A file by its folder, so that all steps stay in that folder even when a path to it changes meanwhile.
struct Place {
    FileDescriptor folder;
    std::string folderPath;
    std::string name;

    [[nodiscard]] std::string path() const { return folderPath + "/" + name; }
};

/// `path` with a link at its end followed to what it names, which need not exist.
std::string followLinks(std::string path) {
    constexpr int mostLinks = 40;
    for (int links = 0; links < mostLinks; ++links) {
        std::array<char, 4096> buffer{};
        const ssize_t length = ::readlink(path.c_str(), buffer.data(), buffer.size());
        if (length < 0) {
            return path; // no link, or nothing there
        }
        const std::string destination(buffer.data(), static_cast<std::size_t>(length));
        // A relative link begins at the folder that it stands in.
        path = destination.starts_with('/') ? "" : stringByDeletingLastPathComponent(path).append("/");
        path.append(destination);
    }
    fail(path, ELOOP);
}

Place placeOf(const std::string& target) {
    const std::string path = followLinks(target);
    Place place;
    place.folderPath = stringByDeletingLastPathComponent(path);
    place.name = lastPathComponent(path);
    place.folder = FileDescriptor(::open(place.folderPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!place.folder.isOpen()) {
        fail(place.folderPath);
    }
    return place;
}

/// The file that is to be replaced; none when there is none.
FileDescriptor openTarget(const Place& place) {
    FileDescriptor file(
        ::openat(place.folder.get(), place.name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file.isOpen() && errno != ENOENT) {
        fail(place.path());
    }
    if (file.isOpen() && !S_ISREG(statusOf(file, place.path()).st_mode)) {
        throw CopyFailure{place.path(), "is no regular file; move it away"};
    }
    return file;
}

/// A new file beside the target, whole on the disk, that waits to be given its name. Removed unless it gets
/// it.
class WaitingFile {
  public:
    /// A copy of `source`, empty without one, for the file `name` of the place, with the owner and mode of
    /// `like`.
    WaitingFile(const Place& place, const FileDescriptor& source, const std::string& name,
                const std::optional<struct stat>& like)
        : place_(place), name_(name) {
        make();
        try {
            fill(source);
            setRights(like);
            if (::fsync(file_.get()) != 0) {
                fail(namePath());
            }
        } catch (const CopyFailure&) {
            remove();
            throw;
        }
    }

    ~WaitingFile() {
        if (!temporary_.empty()) {
            remove();
        }
    }

    WaitingFile(const WaitingFile&) = delete;
    WaitingFile& operator=(const WaitingFile&) = delete;

    /// Takes the name's place in one step.
    void replace() {
        if (::renameat(place_.folder.get(), temporary_.c_str(), place_.folder.get(), name_.c_str()) != 0) {
            fail(namePath());
        }
        temporary_.clear();
    }

    /// Takes the name unless a file has it already.
    void takeFreeName() {
        if (::renameat2(place_.folder.get(), temporary_.c_str(), place_.folder.get(), name_.c_str(),
                        RENAME_NOREPLACE) == 0) {
            temporary_.clear();
        } else if (errno == EINVAL || errno == ENOSYS) {
            replace(); // a file system that cannot check; the caller has looked
        } else if (errno != EEXIST) {
            fail(namePath());
        }
    }

  private:
    void make() {
        std::uint64_t number = 0;
        if (::getrandom(&number, sizeof number, 0) != static_cast<ssize_t>(sizeof number)) {
            fail(namePath());
        }
        temporary_ = ".brindle-" + std::to_string(number) + ".tmp";
        file_ = FileDescriptor(::openat(place_.folder.get(), temporary_.c_str(),
                                        O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (!file_.isOpen()) {
            temporary_.clear();
            fail(namePath());
        }
    }

    void fill(const FileDescriptor& source) {
        std::array<char, 65536> buffer{};
        off_t offset = 0; // the source is read more than once
        while (source.isOpen()) {
            const ssize_t count = ::pread(source.get(), buffer.data(), buffer.size(), offset);
            if (count == 0) {
                return;
            }
            if (count < 0 && errno != EINTR) {
                fail(namePath());
            }
            if (count > 0) {
                offset += count;
                write({buffer.data(), static_cast<std::size_t>(count)});
            }
        }
    }

    void write(std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t written = ::write(file_.get(), bytes.data(), bytes.size());
            if (written < 0 && errno != EINTR) {
                fail(namePath());
            }
            bytes.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
        }
    }

    void setRights(const std::optional<struct stat>& like) {
        // The owner first: changing it may take bits of the mode away.
        if (like && ::fchown(file_.get(), like->st_uid, like->st_gid) != 0) {
            fail(namePath());
        }
        if (::fchmod(file_.get(), like ? like->st_mode & 07777U : kNewFileMode) != 0) {
            fail(namePath());
        }
    }

    void remove() { ::unlinkat(place_.folder.get(), std::exchange(temporary_, {}).c_str(), 0); }

    [[nodiscard]] std::string namePath() const { return place_.folderPath + "/" + name_; }

    const Place& place_;
    std::string name_;
    std::string temporary_;
    FileDescriptor file_;
};

/// Keeps the first text of all under a name that nothing writes again. Where there is none yet, an empty one
/// stands for it: without it the next copy would take Brindle's own text for the first.
void keepFirst(const Place& place, const FileDescriptor& target, const std::optional<struct stat>& status) {
    const std::string first = place.name + ".before-brindle";

    struct stat existing {};

    if (::fstatat(place.folder.get(), first.c_str(), &existing, AT_SYMLINK_NOFOLLOW) != 0) {
        WaitingFile(place, target, first, status).takeFreeName();
    }
}

void copy(const std::string& source, const std::string& target, uid_t user) {
    const FileDescriptor from = openSource(source, user);
    const Place place = placeOf(target);
    const FileDescriptor old = openTarget(place);
    std::optional<struct stat> status;
    if (old.isOpen()) {
        status = statusOf(old, place.path());
    }
    // The new file first: where there is no room for it, nothing has been touched.
    WaitingFile replacement(place, from, place.name, status);
    keepFirst(place, old, status);
    if (status) {
        WaitingFile(place, old, place.name + ".previous", status).replace();
    }
    replacement.replace();
    ::fsync(place.folder.get()); // some file systems cannot; the file is whole either way
}

} // namespace

HelperComplaint copyIntoPlace(const std::string& source, const std::string& target, uid_t user) {
    try {
        copy(source, target, user);
        return {};
    } catch (const CopyFailure& failure) {
        return complaint("cp", failure.subject, failure.why);
    }
}
