#include "privileged/NiutilTask.h"

#include "platform/foundation/NSString.h"
#include "platform/foundation/SystemPaths.h"
#include "platform/posix/Secret.h"

namespace {

namespace systempath = platform::systempath;

std::string userPath(const std::string& shortName) {
    return stringWithFormat("/users/%@", shortName);
}

std::string groupPath(const std::string& groupName) {
    return stringWithFormat("/groups/%@", groupName);
}

/// The value of "sharedDir". Readers expect this string for a folder that is not shared, not an empty
/// property.
std::string publicFolder(bool isShared) {
    return isShared ? "Public" : "<no value>";
}

} // namespace

bool NiutilTask::writeAccount(const std::string& path, bool update, std::span<const Property> properties) {
    if (!update && !runOrStop(systempath::nicl, std::vector<std::string>{".", "-create", path},
                              "outString non empty for create User: %@")) {
        return false;
    }
    for (const Property& property : properties) {
        std::vector<std::string> arguments = {".", "-create", path, property.name};
        if (!property.value.empty()) {
            arguments.push_back(property.value);
        }
        if (!runOrStop(systempath::nicl, arguments, property.message)) {
            return false;
        }
    }
    return true;
}

bool NiutilTask::createUser(const std::string& shortName, const std::string& fullName, const std::string& uid,
                            const std::string& gid, bool publicShared, bool update) {
    if (!authenticate()) {
        return false;
    }
    constexpr std::string_view message = "outString not empty for create userProps: %@";
    std::vector<Property> properties = {
        {"realname", fullName, message},
        {"gid", gid, message},
        {"uid", uid, message},
        {"sharedDir", publicFolder(publicShared), message},
    };
    if (!update) {
        properties.insert(properties.end(), {
                                                {"_shadow_passwd", "", message},
                                                {"hint", "", message},
                                                {"_writers_hint", shortName, message},
                                                {"_writers_passwd", shortName, message},
                                                {"home", "/dev/null", message},
                                                {"passwd", "!", message},
                                                {"shell", "/sbin/nologin", message},
                                            });
    }
    return writeAccount(userPath(shortName), update, properties);
}

bool NiutilTask::createGroup(const std::string& groupName, const std::string& gid, bool update) {
    if (!authenticate()) {
        return false;
    }
    constexpr std::string_view message = "outString not empty for create groupProps: %@";
    std::vector<Property> properties = {{"gid", gid, message}};
    if (!update) {
        properties.push_back({"passwd", "*", message});
        properties.push_back({"users", "", message});
    }
    return writeAccount(groupPath(groupName), update, properties);
}

void NiutilTask::deleteUser(const std::string& shortName) {
    if (authenticate()) {
        runAndLog(systempath::nicl, std::vector<std::string>{".", "-delete", userPath(shortName)},
                  "outString non empty for create Directory: %@");
    }
}

void NiutilTask::deleteGroup(const std::string& groupName) {
    if (authenticate()) {
        runAndLog(systempath::nicl, std::vector<std::string>{".", "-delete", groupPath(groupName)},
                  "outString non empty for deleteGroup: %@");
    }
}

bool NiutilTask::addUser(const std::string& shortName, const std::string& toGroup) {
    return authenticate() &&
           runOrStop(systempath::nicl,
                     std::vector<std::string>{".", "-append", groupPath(toGroup), "users", shortName},
                     "outString non empty for add User to Group: %@");
}

bool NiutilTask::removeUser(const std::string& shortName, const std::string& fromGroup) {
    return authenticate() &&
           runOrStop(systempath::nicl,
                     std::vector<std::string>{".", "-delete", groupPath(fromGroup), "users", shortName},
                     "outString non empty for add User to Group: %@");
}

void NiutilTask::changeUserShare(const std::string& shortName, bool enable) {
    if (authenticate()) {
        runAndLog(
            systempath::nicl,
            std::vector<std::string>{".", "-create", userPath(shortName), "sharedDir", publicFolder(enable)},
            "outString not empty for create directory_path: %@");
    }
}

void NiutilTask::runPasswd(const std::string& shortName, const std::string& passwd) {
    if (!authenticate()) {
        return;
    }
    std::vector<std::string> arguments = {".", "-passwd", stringWithFormat("/Users/%@", shortName)};
    arguments.push_back(passwd); // in the initializer list there would be a copy that is never wiped
    runAndLog(systempath::dscl, arguments, "outString not empty for create passwd: %@", arguments.size() - 1);
    platform::wipe(arguments.back());
}
