#pragma once

#include "platform/foundation/Services.h"
#include "platform/host/SystemFiles.h"
#include "platform/posix/Status.h"

#include <memory>
#include <string>

namespace platform {

/// What the system host is made of. Empty texts stand for the defaults.
struct SystemHostOptions {
    std::string prefix;            ///< of the files that are Brindle's own; for tests
    std::string home;              ///< empty: homeFolder()
    std::string resources;         ///< empty: defaultResources()
    std::string helper;            ///< brindle-helper's file; empty: defaultHelper()
    bool keepsUserDefaults = true; ///< false: user defaults live in memory only
    std::shared_ptr<Log> log;      ///< none: standard error and syslog
};

/// The services of the system host, with which Brindle administers this computer itself. Nothing is written
/// before the first change. The presenter is left out, as in makeEmbeddedServices.
[[nodiscard]] Services makeSystemServices(const SystemHostOptions& options);

/// The real file behind a wired path, as the helper writes it: smb.conf is the one that the installed smbd
/// reads, the AFP settings are one of `files`, any other is `path` itself.
[[nodiscard]] std::string systemFileBehind(const std::string& path, const SystemFiles& files);

} // namespace platform
