#include "platform/samba/InstalledSamba.h"

#include "platform/posix/Process.h"

#include <array>
#include <chrono>
#include <span>
#include <sstream>

#include <unistd.h>

namespace platform {

namespace {

constexpr std::array serverFolders{"/usr/sbin/", "/usr/local/sbin/", "/usr/local/samba/sbin/"};
constexpr std::array commandFolders{"/usr/bin/", "/usr/local/bin/", "/usr/local/samba/bin/"};
constexpr auto listingLimit = std::chrono::seconds(10);

std::string programIn(std::span<const char* const> folders, const std::string& name) {
    for (const char* folder : folders) {
        if (::access((folder + name).c_str(), X_OK) == 0) {
            return folder + name;
        }
    }
    return {};
}

SambaBuild askServer() {
    const std::string server = sambaServer("smbd");
    if (server.empty()) {
        return sambaBuildOf("");
    }
    const auto listing =
        runProcess({{server, "-b"}, ErrorOutput::Discarded, systemEnvironment()}, {}, listingLimit);
    return sambaBuildOf(listing.isOk() ? listing->output : "");
}

} // namespace

std::string sambaServer(const std::string& name) {
    return programIn(serverFolders, name);
}

std::string sambaCommand(const std::string& name) {
    return programIn(commandFolders, name);
}

SambaBuild sambaBuildOf(const std::string& listing) {
    SambaBuild build{"/etc/samba/smb.conf", "/run/samba", "/var/lib/samba/private"};
    std::istringstream lines(listing);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string name;
        std::string path;
        words >> name >> std::ws;
        std::getline(words, path);
        if (path.starts_with('/')) {
            build.configFile = name == "CONFIGFILE:" ? path : build.configFile;
            build.pidFolder = name == "PIDDIR:" ? path : build.pidFolder;
            build.privateFolder = name == "PRIVATE_DIR:" ? path : build.privateFolder;
        }
    }
    return build;
}

const SambaBuild& sambaBuild() {
    static const SambaBuild build = askServer();
    return build;
}

} // namespace platform
