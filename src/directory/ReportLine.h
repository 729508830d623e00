#pragma once

#include <string_view>
#include <vector>

/// What a report shows for a property without values.
inline constexpr std::string_view reportNoValue = "#NoValue#";

/// The fields of a report line in the requested order, and a last piece with the line's end. A value that
/// contains a tab gives additional pieces. Read a piece with `.at()`, so that a line without it raises
/// std::out_of_range. The pieces are parts of `line`, which must outlive them.
[[nodiscard]] std::vector<std::string_view> piecesOfReportLine(std::string_view line);
