#pragma once

#include "platform/foundation/Services.h"
#include "platform/posix/Status.h"

#include <memory>
#include <string>

namespace platform {

/// What the embedded host is made of. Empty strings stand for the defaults.
struct EmbeddedHostOptions {
    std::string root;              ///< the root's folder; empty: EmbeddedRoot::defaultFolder()
    std::string home;              ///< empty: homeFolder()
    std::string resources;         ///< empty: defaultResources()
    std::string helper;            ///< brindle-helper's file; empty: defaultHelper()
    bool keepsUserDefaults = true; ///< false: user defaults live in memory only
    std::shared_ptr<Log> log;      ///< null: standard error and syslog
};

/// The services of the embedded host. Makes its root first if that has no directory yet. The presenter is
/// left out, because the front-end sets its own (Host::setPresenter). Fails when the root cannot be made.
[[nodiscard]] Result<Services> makeEmbeddedServices(const EmbeddedHostOptions& options);

} // namespace platform
