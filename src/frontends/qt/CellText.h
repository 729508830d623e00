#pragma once

#include "platform/appkit/NSTableView.h"

#include <QString>

#include <string>

namespace frontend {

/// Returns what a cell shows for `value`, according to the column's `display`.
[[nodiscard]] QString cellText(const NSTableColumn& column, const std::string& value);

/// Returns what a screen reader says for the cell when that differs from what the cell shows: "Yes" for a
/// mark. Null otherwise.
[[nodiscard]] QString spokenCellText(const NSTableColumn& column, const std::string& value);

} // namespace frontend
