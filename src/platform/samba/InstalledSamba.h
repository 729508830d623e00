#pragma once

#include <string>

namespace platform {

// The Samba that is installed on this computer. Its programs are looked for only in the system's folders,
// never in the user's $PATH.

/// The path of one of Samba's servers ("smbd"); empty when it is not installed.
[[nodiscard]] std::string sambaServer(const std::string& name);
/// The path of one of Samba's commands ("testparm"); empty when it is not installed.
[[nodiscard]] std::string sambaCommand(const std::string& name);

/// What the installed smbd was built with.
struct SambaBuild {
    std::string configFile;    ///< the smb.conf that it reads
    std::string pidFolder;     ///< where its process ID is written
    std::string privateFolder; ///< where its secrets lie
};

/// What `smbd -b` says; it is run once per process. What it does not say has Debian's value. So does
/// everything when no smbd is installed, because its settings can be made before it is installed.
[[nodiscard]] const SambaBuild& sambaBuild();

/// The same for a given output of `smbd -b`.
[[nodiscard]] SambaBuild sambaBuildOf(const std::string& listing);

} // namespace platform
