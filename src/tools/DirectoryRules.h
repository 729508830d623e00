#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

// What may be written to the directory, so that neither a reader of its reports nor the configuration of a
// server that is made from them is broken. Each rule answers nothing when it is kept, else what is wrong and
// what to do.

using RecordPath = std::vector<std::string>;

/// The components of an absolute path; none when a component is empty or the path does not begin with "/".
/// "." and ".." are names.
[[nodiscard]] std::optional<RecordPath> recordPath(const std::string& path);

/// The records that every program counts on: "/", "/users", "/groups", "/config" and "/config/Brindle".
[[nodiscard]] bool isFixed(const RecordPath& path);

/// Whether a change of this record can reach the account lists of a server.
[[nodiscard]] bool isAccount(const RecordPath& path);

/// The rules for a record's name, `path` being the record's path with that name.
[[nodiscard]] std::string ruleBrokenByName(const RecordPath& path);
/// The rules for a property of the record at `path` and values written to it.
[[nodiscard]] std::string ruleBrokenByValues(const RecordPath& path, const std::string& property,
                                             std::span<const std::string> values);
