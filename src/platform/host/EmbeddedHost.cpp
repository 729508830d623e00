#include "platform/host/EmbeddedHost.h"

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/SystemServices.h"
#include "platform/host/DirectoryAccounts.h"
#include "platform/host/EmbeddedRoot.h"
#include "platform/host/HostProcesses.h"
#include "platform/host/InstalledFiles.h"
#include "platform/host/UserFiles.h"
#include "platform/netinfo/LocalDomain.h"
#include "platform/samba/SambaAccounts.h"
#include "platform/samba/ServerProcesses.h"
#include "platform/security/ConsentAuthority.h"

#include <utility>

namespace platform {

namespace {

class EmbeddedPaths : public UserPaths {
  public:
    EmbeddedPaths(EmbeddedRoot root, std::string home, std::string defaultsFile, std::string resources)
        : UserPaths(std::move(home), std::move(defaultsFile), std::move(resources)), root_(std::move(root)) {}

    [[nodiscard]] std::string map(const std::string& path) const override { return root_.map(path); }

  private:
    EmbeddedRoot root_;
};

std::string orDefault(const std::string& given, std::string (*makeDefault)()) {
    return given.empty() ? makeDefault() : given;
}

} // namespace

Result<Services> makeEmbeddedServices(const EmbeddedHostOptions& options) {
    const EmbeddedRoot root(orDefault(options.root, &EmbeddedRoot::defaultFolder));
    if (Status status = root.makeIfMissing(); !status.isOk()) {
        return status;
    }
    const std::string home = orDefault(options.home, &homeFolder);
    Services services;
    services.log = options.log ? options.log : std::make_shared<SystemLog>();
    services.clock = std::make_shared<SystemClock>();
    services.paths = std::make_shared<EmbeddedPaths>(
        root, home, options.keepsUserDefaults ? defaultsFileOf(home) : std::string(),
        orDefault(options.resources, &defaultResources));
    services.accountNames = std::make_shared<DirectoryAccounts>(root.storeFile());
    services.processes = std::make_shared<HostProcesses>(
        [configuration = SambaAccounts(root.sambaPaths()).configurationFile()](pid_t process) {
            return isServerOrChildWith(process, configuration);
        });
    services.localDomain = std::make_shared<StoreDomain>(root.storeFile());
    const auto authority =
        std::make_shared<ConsentAuthority>(orDefault(options.helper, &defaultHelper), root.folder());
    services.authority = authority;
    services.pendingWrites = authority;
    services.historyFile = root.folder() + "/history.db";
    services.writersFile = writersFileOf(home); // not the root's: all roots use the same temporary files
    services.languages = languagesFromEnvironment();
    return services;
}

} // namespace platform
