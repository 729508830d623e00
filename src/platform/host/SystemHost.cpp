#include "platform/host/SystemHost.h"

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/SystemPaths.h"
#include "platform/foundation/SystemServices.h"
#include "platform/host/DirectoryAccounts.h"
#include "platform/host/HostProcesses.h"
#include "platform/host/InstalledFiles.h"
#include "platform/host/SystemComputer.h"
#include "platform/host/UserFiles.h"
#include "platform/netinfo/LocalDomain.h"
#include "platform/samba/InstalledSamba.h"
#include "platform/samba/ServerProcesses.h"
#include "platform/security/ConsentAuthority.h"
#include "platform/security/HelperFile.h"
#include "platform/security/SudoAuthority.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include <unistd.h>

namespace platform {

namespace {

class SystemPaths : public UserPaths {
  public:
    SystemPaths(SystemFiles files, std::string home, std::string defaultsFile, std::string resources)
        : UserPaths(std::move(home), std::move(defaultsFile), std::move(resources)),
          files_(std::move(files)) {}

    /// Until they are saved for the first time, the AFP settings are those of a new root.
    [[nodiscard]] std::string map(const std::string& path) const override {
        std::string file = systemFileFor(path, files_);
        std::error_code error;
        const bool isNew =
            path == systempath::appleFileServer && !std::filesystem::exists(file, error) && !error;
        return isNew ? resources() + "/AppleFileServer.plist" : file;
    }

  private:
    SystemFiles files_;
};

/// Sets the authority: sudo, or for root, who needs no password, the user's consent.
void useAuthority(Services& services, const SystemHostOptions& options, const std::string& helper) {
    if (::geteuid() == 0) {
        const auto authority =
            std::make_shared<ConsentAuthority>(systemHelperCommand(helper, options.prefix));
        services.authority = authority;
        services.pendingWrites = authority;
    } else {
        const auto authority = std::make_shared<SudoAuthority>(helper, options.prefix);
        services.authority = authority;
        services.pendingWrites = authority;
    }
}

} // namespace

std::string systemFileFor(const std::string& path, const SystemFiles& files) {
    return path == systempath::smbConf           ? sambaBuild().configFile
           : path == systempath::appleFileServer ? files.appleFileServer()
                                                 : path;
}

Services makeSystemServices(const SystemHostOptions& options) {
    const SystemFiles files(options.prefix);
    const std::string home = options.home.empty() ? homeFolder() : options.home;
    Services services;
    services.log = options.log ? options.log : std::make_shared<SystemLog>();
    services.clock = std::make_shared<SystemClock>();
    services.paths = std::make_shared<SystemPaths>(
        files, home, options.keepsUserDefaults ? defaultsFileOf(home) : std::string(),
        options.resources.empty() ? defaultResources() : options.resources);
    services.accountNames = std::make_shared<DirectoryAccounts>(""); // the computer's own accounts
    services.processes = std::make_shared<HostProcesses>(&isComputersServer);
    services.localDomain = std::make_shared<ComputersDomain>(files.storeFile());
    const std::string helper = options.helper.empty() ? defaultHelper() : options.helper;
    useAuthority(services, options, helper);
    services.computer = std::make_shared<SystemComputer>(helper, services.localDomain);
    services.historyFile = historyFileOf(home);
    services.writersFile = writersFileOf(home);
    services.keepsLayout = true;
    services.languages = languagesFromEnvironment();
    return services;
}

} // namespace platform
