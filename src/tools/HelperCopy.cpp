#include "tools/HelperCopy.h"

#include "platform/posix/InputOutput.h"
#include "platform/posix/WholeFile.h"

#include <cerrno>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tools {

using platform::FileDescriptor;
using platform::FilePlace;
using platform::Result;
using platform::Status;
using platform::WaitingFile;

namespace {

constexpr mode_t newFileMode = 0644;
constexpr const char* cannotCopy = "cannot copy";

/// The content and attributes of a regular file, read through one descriptor.
struct OpenedFile {
    std::string text;

    struct stat status {};
};

/// Reads an open file, so that what is checked is also what is read, even if the path changes meanwhile.
Result<OpenedFile> readOpened(const FileDescriptor& file, const std::string& path, const char* advice,
                              std::optional<uid_t> owner = {}) {
    OpenedFile opened;
    if (::fstat(file.get(), &opened.status) != 0) {
        return Status::ofErrno(cannotCopy, path, errno);
    }
    if (!S_ISREG(opened.status.st_mode)) {
        return Status::failure(cannotCopy, path, std::string("is not a regular file; ") + advice);
    }
    if (owner && opened.status.st_uid != *owner) {
        return Status::failure(cannotCopy, path,
                               "does not belong to the user who runs Brindle; name a file of that user's");
    }
    auto text = platform::readAll(file.get(), path, platform::largestWholeFile);
    if (!text.isOk()) {
        return text.status();
    }
    opened.text = std::move(*text);
    return opened;
}

// Without O_NONBLOCK, opening a pipe would keep the helper waiting.
constexpr int openFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

Result<OpenedFile> readSource(const std::string& source, uid_t user) {
    const FileDescriptor file(::open(source.c_str(), openFlags));
    if (!file.isOpen()) {
        return Status::ofErrno(cannotCopy, source, errno);
    }
    return readOpened(file, source, "name one", user);
}

/// The file that is to be replaced; none when it does not exist.
Result<std::optional<OpenedFile>> readTarget(const FilePlace& place) {
    const std::string path = place.pathOf(place.name());
    const FileDescriptor file(::openat(place.folder(), place.name().c_str(), openFlags));
    if (!file.isOpen()) {
        return errno == ENOENT ? Result<std::optional<OpenedFile>>(std::nullopt)
                               : Status::ofErrno("cannot replace", path, errno);
    }
    auto opened = readOpened(file, path, "move it away");
    return opened.isOk() ? Result(std::optional(std::move(*opened))) : opened.status();
}

/// Keeps the very first original under a name that is never written again. If there was no file, an empty one
/// is kept: otherwise the next copy would take Brindle's own text for the original.
Status keepFirst(const FilePlace& place, const std::string& text, const std::optional<struct stat>& status) {
    const std::string first = place.name() + ".before-brindle";

    struct stat existing {};

    if (::fstatat(place.folder(), first.c_str(), &existing, AT_SYMLINK_NOFOLLOW) == 0) {
        return {};
    }
    auto file = WaitingFile::write(place, first, text, status, newFileMode);
    return file.isOk() ? file->takeFreeName() : file.status();
}

Status keepPrevious(const FilePlace& place, const OpenedFile& old) {
    auto file = WaitingFile::write(place, place.name() + ".previous", old.text, old.status, newFileMode);
    return file.isOk() ? file->replace() : file.status();
}

} // namespace

Status copyIntoPlace(const std::string& source, const std::string& target, uid_t user, CopyCheck check) {
    const auto from = readSource(source, user);
    if (!from.isOk()) {
        return from.status();
    }
    const auto place = FilePlace::find(target, platform::LinkRule::Follow);
    if (!place.isOk()) {
        return place.status();
    }
    const auto old = readTarget(*place);
    if (!old.isOk()) {
        return old.status();
    }
    if (check != nullptr) {
        if (Status status = check(from->text, *old ? (*old)->text : std::string()); !status.isOk()) {
            return status;
        }
    }
    const auto like = *old ? std::optional((*old)->status) : std::nullopt;
    // The new file is written first: if there is no room for it, nothing else has been touched.
    auto replacement = WaitingFile::write(*place, place->name(), from->text, like, newFileMode);
    Status status = replacement.status();
    if (status.isOk()) {
        status = keepFirst(*place, *old ? (*old)->text : std::string(), like);
    }
    if (status.isOk() && *old) {
        status = keepPrevious(*place, **old);
    }
    return status.isOk() ? replacement->replace() : status;
}

} // namespace tools
