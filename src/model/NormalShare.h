#pragma once

#include "model/RareText.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

/// A string that occurs in many rows, like a privilege or "Yes". Equal strings share one copy, which is kept
/// until the program ends, so it is meant for columns with few different values. Main thread only.
class SharedText {
  public:
    SharedText() : SharedText(std::string_view()) {}

    SharedText(std::string_view text);

    SharedText(const char* text) : SharedText(std::string_view(text)) {}

    [[nodiscard]] const std::string& str() const;

  private:
    std::uint32_t number_; ///< half a pointer's size: a row has nine
};

/// One share point as the share table shows it: combined from its directory record, the SMB section for the
/// same folder and the folder's permission bits. The values are display strings. The objects are made again
/// whenever the inventory is read.
class NormalShare {
  public:
    [[nodiscard]] const std::string& ShareName() const { return _sharename; }

    /// "1", "0", or "#NoValue#" when the record lacks the property.
    [[nodiscard]] const std::string& AFPShared() const { return _afpshared.str(); }

    [[nodiscard]] const std::string& AFPName() const {
        return _afpname.isMade() ? _afpname.str() : _sharename;
    }

    [[nodiscard]] const std::string& DirectoryPath() const { return _directorypath; }

    // The folder's privileges, not the names of accounts.
    [[nodiscard]] const std::string& Owner() const { return _owner.str(); }

    [[nodiscard]] const std::string& Group() const { return _group.str(); }

    [[nodiscard]] const std::string& Everyone() const { return _everyone.str(); }

    /// "+" when published over AFP, otherwise "-".
    [[nodiscard]] const std::string& AFS() const { return _afs.str(); }

    /// The localized "Yes" or "No"; empty for a share that exists only in the SMB configuration.
    [[nodiscard]] const std::string& Inherit() const { return _inheritperms.str(); }

    [[nodiscard]] const std::string& InheritOwner() const { return _inheritowner.str(); }

    /// "+" when an SMB section shares this folder, otherwise "-".
    [[nodiscard]] const std::string& SMB() const { return _smb.str(); }

    /// The section's "guest ok" as written in the file; "No" without one.
    [[nodiscard]] const std::string& SMBGuestAccess() const { return _smbguestaccess.str(); }

    void setShareName(std::string text);

    void setAFPShared(std::string_view text) { _afpshared = text; }

    void setAFPName(std::string text);

    // Part of the class's public operations; setPathandPermissions sets these four.
    void setDirectoryPath(std::string text) { _directorypath = std::move(text); }

    void setOwner(std::string_view text) { _owner = text; }

    void setGroup(std::string_view text) { _group = text; }

    void setEveryone(std::string_view text) { _everyone = text; }

    void setAFS(std::string_view text) { _afs = text; }

    void setInherit(std::string_view text) { _inheritperms = text; }

    void setInheritOwner(std::string_view text) { _inheritowner = text; }

    void setSMB(std::string_view text) { _smb = text; }

    void setSMBGuestAccess(std::string_view text) { _smbguestaccess = text; }

    /// True for a share that has a record in the directory; false for one that exists only in smb.conf.
    [[nodiscard]] bool hasRecord() const { return hasRecord_; }

    void setHasRecord(bool has) { hasRecord_ = has; }

    /// Stores `path` as the folder and sets the three privilege strings from its mode, following links; all
    /// three are empty for a folder that cannot be examined.
    void setPathandPermissions(const std::string& path);

    /// "r/w", "r", "w" or "" for the privilege codes 3, 2, 1, 0; "" for any other.
    [[nodiscard]] static std::string permissionsToString(int code);

    /// The field whose getter has that name, or null for an unknown name.
    [[nodiscard]] const std::string* valueForKey(std::string_view getterName) const;

    /// For the log. Part of the class's public operations; nothing here calls it.
    [[nodiscard]] std::string description() const;

  private:
    std::string _sharename;
    RareText _afpname; ///< only if it is not the share's name
    std::string _directorypath = "Directory Not Set";
    SharedText _afpshared;
    SharedText _owner;
    SharedText _group;
    SharedText _everyone;
    SharedText _afs = "-";
    SharedText _inheritperms;
    SharedText _inheritowner;
    SharedText _smb = "-";
    SharedText _smbguestaccess = "No";
    bool hasRecord_ = false;
};

/// The two-bit privilege code of a class of users in a folder's mode: 3 read and write, 2 read only, 1 write
/// only, 0 none. Bits above 0777 do not matter.
[[nodiscard]] constexpr int ownerPrivilegeCode(int mode) {
    return (mode & 0700) >> 7;
}

[[nodiscard]] constexpr int groupPrivilegeCode(int mode) {
    return (mode & 070) >> 4;
}

[[nodiscard]] constexpr int everyonePrivilegeCode(int mode) {
    return (mode & 07) >> 1;
}

/// The mode for three privilege codes. Every class gets its search bit.
[[nodiscard]] constexpr int modeForPrivilegeCodes(int owner, int group, int everyone) {
    return (owner << 7) | 0100 | (group << 4) | 010 | (everyone << 1) | 01;
}
