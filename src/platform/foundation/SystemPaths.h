#pragma once

// The system's fixed paths, for those who send requests and those who serve them. They are only names: the
// host decides where a settings file really lies (Paths::map), and the helper which program a tool is.
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
inline constexpr const char* smbstatus = "/usr/bin/smbstatus";
inline constexpr const char* smbcontrol = "/usr/bin/smbcontrol";
inline constexpr const char* service = "/usr/sbin/service";

} // namespace platform::systempath
