#pragma once

#include <iosfwd>

class NSTableView;

namespace frontend {

/// Writes the columns of `table` that its window shows, titles and rows, as text in aligned columns. Each
/// line ends with a line break. Control characters and bytes that are not UTF-8 are replaced by U+FFFD.
void writeTable(NSTableView& table, std::ostream& out);

} // namespace frontend
