#pragma once

#include "platform/posix/Status.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

// What may be written to the directory, so that neither a reader of its reports nor the configuration of a
// server that is made from them is broken. Nothing here reads a directory: the writers ask before they open
// theirs, and whoever wants to know beforehand asks the same.

using RecordPath = std::vector<std::string>;

/// The components of an absolute path; none when a component is empty or the path does not begin with "/".
/// "." and ".." are names.
[[nodiscard]] std::optional<RecordPath> recordPath(const std::string& path);

/// The records that every program counts on: "/", "/users", "/groups", "/config" and "/config/Brindle".
[[nodiscard]] bool isFixed(const RecordPath& path);

/// Whether a change of this record can reach the account lists of a server.
[[nodiscard]] bool isAccount(const RecordPath& path);

/// One change of the directory, as the words of a run of nicl ask for it.
struct DirectoryChange {
    std::string operation; ///< "-create", "-append" or "-delete"
    std::string path;
    std::optional<std::string> property; ///< none: the record itself
    std::vector<std::string> values;
};

/// The change that the words after "nicl" ask for: the domain ".", the operation, the path, and the property
/// with its values. None when they are no such words.
[[nodiscard]] std::optional<DirectoryChange> directoryChange(std::span<const std::string> words);

/// Ok when some directory would take the change. Else it is refused whatever the directory holds, and the
/// status says why and what to do: "cannot create /users/a,b: an account's name ...". Creating and renaming
/// check the record's new name even where a record of that name is there from before; deleting accepts any
/// name.
[[nodiscard]] platform::Status checkDirectoryChange(const DirectoryChange& change);

/// The failure of a change: what was to be done, on what, and `why`.
[[nodiscard]] platform::Status refusal(const DirectoryChange& change, std::string why);
