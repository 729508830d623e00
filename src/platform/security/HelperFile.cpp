#include "platform/security/HelperFile.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr const char* cannotUse = "cannot use the helper";

/// Whether anybody but root may write there. Root's own group counts as root, unless there is an access
/// control list (acl(5)): then the group's bits are what any user on it may have.
bool othersMayWrite(const std::filesystem::path& place, const struct stat& status) {
    const bool hasList = ::lgetxattr(place.c_str(), "system.posix_acl_access", nullptr, 0) > 0;
    const bool groupMay = (status.st_mode & S_IWGRP) != 0 && (status.st_gid != 0 || hasList);
    return status.st_uid != 0 || groupMay || (status.st_mode & S_IWOTH) != 0;
}

/// The first of `place` and the folders above it that users other than root may change, or "".
Result<std::string> placeOfOthers(std::filesystem::path place) {
    for (bool isTop = false; !isTop; place = place.parent_path()) {
        struct stat status {};

        isTop = place == place.parent_path();
        if (::lstat(place.c_str(), &status) != 0) {
            if (errno != ENOENT) {
                return Status::ofErrno(cannotUse, place, errno);
            }
        } else if (S_ISLNK(status.st_mode) ? status.st_uid != 0 : othersMayWrite(place, status)) {
            return place.string();
        }
    }
    return std::string();
}

} // namespace

bool isDevelopment() {
    const char* value = std::getenv("BRINDLE_DEVELOPMENT");
    return value != nullptr && std::string_view(value) == "1";
}

Status checkHelperFile(const std::string& path) {
    if (::access(path.c_str(), X_OK) != 0) {
        return Status::ofErrno(cannotUse, path, errno);
    }
    if (isDevelopment()) {
        return {};
    }
    std::error_code error;
    const std::filesystem::path real = std::filesystem::canonical(path, error);
    if (error) {
        return Status::failure(cannotUse, path, error.message());
    }
    // sudo gets the path itself, so the folders that hold its links count too.
    for (const std::filesystem::path& place : {std::filesystem::path(path), real}) {
        const auto open = placeOfOthers(place);
        if (!open.isOk()) {
            return open.status();
        }
        if (!open->empty()) {
            return Status::failure(cannotUse, path,
                                   "users other than root may change " + *open +
                                       "; install Brindle as root, or, to try a build of your own, set "
                                       "BRINDLE_DEVELOPMENT=1");
        }
    }
    return {};
}

Result<std::string> rootsFolder(const std::string& path) {
    constexpr const char* cannotWork = "cannot work below";
    if (!path.starts_with('/')) {
        return Status::failure(cannotWork, path,
                               "it is not an absolute path; name a folder of root's by one");
    }
    std::error_code error;
    const std::filesystem::path place = std::filesystem::weakly_canonical(path, error);
    if (error) {
        return Status::failure(cannotWork, path, error.message());
    }
    const auto open = placeOfOthers(place);
    if (!open.isOk()) {
        return open.status();
    }
    return open->empty()
               ? Result(place.string())
               : Status::failure(cannotWork, path,
                                 "users other than root may change " + *open + "; name a folder of root's");
}

std::vector<std::string> systemHelperCommand(const std::string& helper, const std::string& prefix) {
    std::vector<std::string> command = {helper, "--system"};
    if (!prefix.empty()) {
        command.insert(command.end(), {"--root", prefix});
    }
    return command;
}

} // namespace platform
