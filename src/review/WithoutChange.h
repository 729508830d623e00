#pragma once

#include "review/HistoryEntry.h"

#include <optional>
#include <set>
#include <string>

namespace review {

/// What the smb.conf `now` becomes when the change from `before` to `after` is taken back in it, with all
/// else as it is: `now` itself when it has been taken back already. None when a section that the change
/// touched has been changed since, or when another one would not stay as it is.
[[nodiscard]] std::optional<std::string> withoutChange(const std::string& now, const std::string& before,
                                                       const std::string& after);

/// The names of the sections whose settings a change of smb.conf concerns.
[[nodiscard]] std::set<std::string> touchedSections(const FileChange& change);

} // namespace review
