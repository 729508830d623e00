#pragma once

// The paths that the system has wired in, once for those who ask for them and those who answer. They are
// names: where a settings file really lies is the host's decision (Paths::map), and the tools are the
// helper's.
namespace platform::systempath {

inline constexpr const char* smbConf = "/etc/smb.conf";
inline constexpr const char* appleFileServer = "/Library/Preferences/com.apple.AppleFileServer.plist";

// Where new settings are written before they are copied into place.
inline constexpr const char* temporarySmbConf = "~/smb_test.conf";
inline constexpr const char* temporaryAppleFileServer = "~/AppleFileServer.plist";

inline constexpr const char* nicl = "/usr/bin/nicl";
inline constexpr const char* dscl = "/usr/bin/dscl";
inline constexpr const char* cp = "/bin/cp";
inline constexpr const char* chown = "/usr/sbin/chown";
inline constexpr const char* chmod = "/bin/chmod";
inline constexpr const char* kill = "/bin/kill";
inline constexpr const char* service = "/usr/sbin/service";

} // namespace platform::systempath
