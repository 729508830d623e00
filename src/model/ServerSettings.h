#pragma once

#include "model/SMBShare.h"

#include <optional>
#include <string>
#include <string_view>

// How the SMB server reads the settings of smb.conf: it minds neither case nor blanks in the names of
// sections and settings, knows some settings under several names, and takes the last of several
// (smb.conf(5)).

/// A setting's name, in lower case and without blanks, as the server compares names.
[[nodiscard]] std::string foldedSettingName(std::string_view name);

/// "yes", "true", "on" and "1" in any case, and their opposites; none for another value.
[[nodiscard]] std::optional<bool> serverBool(std::string_view value);

/// Whether the server takes the section for "global" (or "globals"), or for "homes".
[[nodiscard]] bool isServerGlobal(std::string_view section);
[[nodiscard]] bool isServerHomes(std::string_view section);

/// A setting as the server finds it in a section.
struct ServerSetting {
    const SMBPair* pair = nullptr; ///< as it is written
    bool inverted = false; ///< written under a name that means the opposite: "writable" for "read only"
};

/// The one that counts for `key`, the setting's main name; `pair` is null when the section has none.
[[nodiscard]] ServerSetting serverSetting(const SMBShare& section, std::string_view key);
/// The same as a boolean; `standard` where there is none, or no boolean.
[[nodiscard]] bool serverFlag(const SMBShare& section, std::string_view key, bool standard);
