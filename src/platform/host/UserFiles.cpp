#include "platform/host/UserFiles.h"

#include <cstdlib>
#include <utility>

#include <pwd.h>
#include <unistd.h>

namespace platform {

namespace {

/// The folder that `variable` names, or `otherwise`. A relative path in such a variable must be ignored.
std::string folderOf(const char* variable, const std::string& otherwise) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value == '/' ? value : otherwise;
}

} // namespace

std::string homeFolder() {
    const char* value = std::getenv("HOME");
    std::string home = value == nullptr ? "" : value;
    if (home.empty()) {
        const passwd* entry = ::getpwuid(::getuid());
        home = entry == nullptr ? "/" : entry->pw_dir;
    }
    while (home.size() > 1 && home.ends_with('/')) {
        home.pop_back();
    }
    return home;
}

std::string defaultsFileOf(const std::string& home) {
    return folderOf("XDG_CONFIG_HOME", home + "/.config") + "/brindle/defaults.plist";
}

std::string historyFileOf(const std::string& home) {
    return folderOf("XDG_STATE_HOME", home + "/.local/state") + "/brindle/history.db";
}

std::string writersFileOf(const std::string& home) {
    return folderOf("XDG_STATE_HOME", home + "/.local/state") + "/brindle/writing.lock";
}

UserPaths::UserPaths(std::string home, std::string defaultsFile, std::string resources)
    : home_(std::move(home)), defaultsFile_(std::move(defaultsFile)), resources_(std::move(resources)) {}

} // namespace platform
