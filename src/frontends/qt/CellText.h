#pragma once

#include "platform/appkit/NSTableView.h"

#include <QString>

#include <string>

/// What a cell shows for `value`, as the column's `display` asks.
[[nodiscard]] QString cellText(const NSTableColumn& column, const std::string& value);

/// What a screen reader says of it, where that is not what the cell shows: a mark is "Yes". Null otherwise.
[[nodiscard]] QString spokenCellText(const NSTableColumn& column, const std::string& value);
