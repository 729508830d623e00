#pragma once

#include "model/SMBShare.h"

#include <optional>
#include <string>
#include <string_view>

// How the SMB server reads the settings in smb.conf: it ignores case, and in the names of settings and of
// "global" also blanks; it knows some settings under several names, and uses the last of several
// (smb.conf(5)).

/// A setting's name in lower case and without blanks, which is how the server compares names.
[[nodiscard]] std::string foldedSettingName(std::string_view name);

/// The setting's main name in that form: "readonly" for "Write OK".
[[nodiscard]] std::string mainSettingName(std::string_view name);

/// True for "yes", "true", "on" and "1" in any case, false for their opposites, none for another value.
[[nodiscard]] std::optional<bool> serverBool(std::string_view value);

/// Whether the server takes this section as "global" (or "globals"), or as "homes".
[[nodiscard]] bool isServerGlobal(std::string_view section);
[[nodiscard]] bool isServerHomes(std::string_view section);

/// A text as the server takes it: without quotes at its ends.
[[nodiscard]] std::string_view withoutQuotes(std::string_view value);

/// Whether the server replaces a % and this letter after it.
[[nodiscard]] bool isServerVariable(char letter);
/// Whether a client can connect to a share of that name. The server replaces variables in it and takes
/// several blanks for one, IPC$ is its own, and what follows a backslash is no part of the name for a client.
[[nodiscard]] bool canBeReached(const std::string& share);
/// Whether the server looks for the very folder that the path names, and not for one with variables replaced
/// or with one blank for several.
[[nodiscard]] bool isTakenLiterally(std::string_view path);

// What is said where that is not so, or where the server does not start: keys of the string table.
inline constexpr const char* nameNotReached =
    "No computer can connect to a share called \"%@\": choose another name.";
inline constexpr const char* folderNotFound = "The SMB server does not find the folder \"%@\": it takes a %% "
                                              "and the letter after it for a variable, and several "
                                              "blanks for one.";
inline constexpr const char* serverDoesNotStart = "The SMB server does not start with smb.conf as it is, and "
                                                  "one that runs takes up no change: \"Check This "
                                                  "Computer…\" (brindle doctor) names the line at fault.";

/// A setting as the server finds it in a section.
struct ServerSetting {
    const SMBPair* pair = nullptr; ///< as written in the file
    bool inverted = false; ///< written with a name that means the opposite: "writable" for "read only"
};

/// The setting that counts for `key`, a main name; `pair` is null when the section has none.
[[nodiscard]] ServerSetting serverSetting(const SMBShare& section, std::string_view key);
/// The same as a boolean; `standard` when there is no setting or it is not a boolean.
[[nodiscard]] bool serverFlag(const SMBShare& section, std::string_view key, bool standard);
