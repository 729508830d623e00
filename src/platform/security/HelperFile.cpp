#include "platform/security/HelperFile.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr const char* cannotUse = "cannot use the helper";

/// Root's group is root itself.
bool othersMayWrite(const struct stat& status) {
    const bool groupMay = (status.st_mode & S_IWGRP) != 0 && status.st_gid != 0;
    return status.st_uid != 0 || groupMay || (status.st_mode & S_IWOTH) != 0;
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
    std::filesystem::path place = std::filesystem::canonical(path, error);
    if (error) {
        return Status::failure(cannotUse, path, error.message());
    }
    while (true) {
        struct stat status {};

        if (::lstat(place.c_str(), &status) != 0) {
            return Status::ofErrno(cannotUse, place, errno);
        }
        if (othersMayWrite(status)) {
            return Status::failure(cannotUse, path,
                                   "others than root may change " + place.string() +
                                       "; install Brindle as root, or, to try a build of your own, set "
                                       "BRINDLE_DEVELOPMENT=1");
        }
        if (place == place.parent_path()) {
            return {};
        }
        place = place.parent_path();
    }
}

std::vector<std::string> systemHelperCommand(const std::string& helper, const std::string& prefix) {
    std::vector<std::string> command = {helper, "--system"};
    if (!prefix.empty()) {
        command.insert(command.end(), {"--root", prefix});
    }
    command.emplace_back("--session");
    return command;
}

} // namespace platform
