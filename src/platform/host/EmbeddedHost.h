#pragma once

#include "platform/foundation/Services.h"
#include "platform/posix/Status.h"

#include <memory>
#include <string>

namespace platform {

/// What the embedded host is made of. Empty texts stand for the defaults.
struct EmbeddedHostOptions {
    std::string root;      ///< the root's folder; empty: $BRINDLE_ROOT, else EmbeddedRoot::defaultFolder()
    std::string home;      ///< empty: $HOME, else the account's home folder
    std::string resources; ///< empty: defaultResources()
    std::string helper;    ///< brindle-helper's file; empty: defaultHelper()
    bool keepsUserDefaults = true; ///< false: user defaults live in memory only
    std::shared_ptr<Log> log;      ///< none: standard error and syslog
};

/// The services of the embedded host, its root made first when it has no directory yet. The presenter is left
/// out: the front-end puts its own in place (Host::setPresenter). Fails when there can be no root.
[[nodiscard]] Result<Services> makeEmbeddedServices(const EmbeddedHostOptions& options);

/// The folder with Info.plist and the interface files: $BRINDLE_RESOURCES, else ../share/brindle beside the
/// folder of the running program.
[[nodiscard]] std::string defaultResources();

/// The brindle-helper that is installed beside this program (../libexec), else the one in its folder, as in a
/// build.
[[nodiscard]] std::string defaultHelper();

/// The folder that holds the running program.
[[nodiscard]] std::string programFolder();

} // namespace platform
