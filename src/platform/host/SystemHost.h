#pragma once

#include "platform/foundation/Services.h"
#include "platform/host/SystemFiles.h"

#include <memory>
#include <string>

namespace platform {

/// What the system host is made of. Empty strings stand for the defaults.
struct SystemHostOptions {
    std::string prefix;            ///< for Brindle's own files (SystemFiles); for tests
    std::string home;              ///< empty: homeFolder()
    std::string resources;         ///< empty: defaultResources()
    std::string helper;            ///< brindle-helper's file; empty: defaultHelper()
    bool keepsUserDefaults = true; ///< false: user defaults live in memory only
    std::shared_ptr<Log> log;      ///< null: standard error and syslog
};

/// The services of the system host, with which Brindle administers this computer itself. Writes nothing. The
/// presenter is left out, as in makeEmbeddedServices.
[[nodiscard]] Services makeSystemServices(const SystemHostOptions& options);

/// The real path of one of the application's fixed paths, to which the helper writes: for smb.conf the file
/// that the installed smbd reads, for the AFP settings one of `files`, for any other `path` itself.
[[nodiscard]] std::string systemFileFor(const std::string& path, const SystemFiles& files);

} // namespace platform
