#include "platform/foundation/NSFileManager.h"

#include "platform/foundation/Host.h"

#include "platform/posix/InputOutput.h"
#include "platform/posix/WholeFile.h"

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string mapped(const std::string& path) {
    return platform::Host::current().paths().map(path);
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

    if (::stat(mapped(path).c_str(), &status) != 0) {
        return std::nullopt;
    }
    if (const auto& forecast = platform::Host::current().services().folderForecast) {
        forecast->apply(status);
    }
    return NSFileAttributes{static_cast<std::int32_t>(status.st_mode & 07777U), status.st_uid, status.st_gid};
}

platform::Result<std::string> contentsOfFile(const std::string& path) {
    return platform::readWholeFile(mapped(path));
}

platform::Status writeToFileAtomically(const std::string& path, std::string_view bytes, unsigned mode) {
    return platform::writeWholeFile(mapped(path), bytes, {.mode = mode});
}

platform::Status removeFileAtPath(const std::string& path) {
    return ::unlink(mapped(path).c_str()) == 0 ? platform::Status()
                                               : platform::Status::ofErrno("cannot remove", path, errno);
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
