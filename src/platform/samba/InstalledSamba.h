#pragma once

#include <string>

namespace platform {

// The Samba that is installed on this computer. Its programs are looked for in the folders of the system
// alone, never in those of the user's $PATH.

/// The path of one of Samba's servers ("smbd"); empty when it is not installed.
[[nodiscard]] std::string sambaServer(const std::string& name);
/// The path of one of Samba's commands ("testparm"); empty when it is not installed.
[[nodiscard]] std::string sambaCommand(const std::string& name);

/// What the installed smbd was built with.
struct SambaBuild {
    std::string configFile;    ///< the smb.conf that it reads
    std::string pidFolder;     ///< where it says which process it is
    std::string privateFolder; ///< where its secrets lie
};

/// What `smbd -b` says, asked once a process. Debian's places for what it does not say, and for all where no
/// smbd is installed: its settings can be made before it is.
[[nodiscard]] const SambaBuild& sambaBuild();

/// The same, read out of a listing of `smbd -b`.
[[nodiscard]] SambaBuild sambaBuildOf(const std::string& listing);

} // namespace platform
