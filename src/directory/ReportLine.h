#pragma once

#include <string>
#include <string_view>
#include <vector>

/// What a report shows for a property without values.
inline constexpr std::string_view reportNoValue = "#NoValue#";

/// The fields of a report line in the order in which they were asked for, and one last piece, the line's end.
/// A value that holds a tab makes further pieces. Read a piece with `.at()`: a line that lacks it then raises
/// std::out_of_range.
[[nodiscard]] std::vector<std::string> piecesOfReportLine(std::string_view line);
