#pragma once

#include "platform/posix/Status.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

// What may be written to the directory without breaking a reader of its reports, or a server configuration
// that is made from it. Nothing here reads a directory: the writers check before they open theirs, and so
// does whoever wants to know beforehand.

using RecordPath = std::vector<std::string>;

/// The components of an absolute path; none when a component is empty or the path does not begin with "/".
/// "." and ".." are ordinary names.
[[nodiscard]] std::optional<RecordPath> recordPath(const std::string& path);

/// Whether this is one of the records that every program relies on: "/", "/users", "/groups", "/config" and
/// "/config/Brindle".
[[nodiscard]] bool isFixed(const RecordPath& path);

/// Whether the record is an account, or below one, so that changing it may affect a server's account lists.
[[nodiscard]] bool isAccount(const RecordPath& path);

/// One change of the directory, as requested by the arguments of nicl.
struct DirectoryChange {
    std::string operation; ///< "-create", "-append" or "-delete"
    std::string path;
    std::optional<std::string> property; ///< none: the record itself
    std::vector<std::string> values;
};

/// The change that the arguments of nicl request: the domain ".", the operation, the path, and the property
/// with its values. None for other arguments.
[[nodiscard]] std::optional<DirectoryChange> directoryChange(std::span<const std::string> words);

/// Ok when the change is allowed as far as that does not depend on what the directory holds. Otherwise the
/// status says why not and what to do: "cannot create /users/a,b: an account's name ...". Creating and
/// renaming check the record's new name even if such a record exists already; deleting accepts any name.
[[nodiscard]] platform::Status checkDirectoryChange(const DirectoryChange& change);

/// Why a user cannot be made while another one has the name but for the case of letters: a key of the string
/// table with a place for the other one's name. The server's password database does not tell them apart.
inline constexpr const char* ruleOfOtherUser =
    "there is a user called %@, and the case of letters does not tell users apart; choose another name";

/// The failure of a change, which names the operation, the record and `why`.
[[nodiscard]] platform::Status refusal(const DirectoryChange& change, std::string why);
