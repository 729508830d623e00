#include "directory/ReportLine.h"

#include <algorithm>
#include <cstddef>

std::vector<std::string_view> piecesOfReportLine(std::string_view line) {
    std::vector<std::string_view> pieces;
    pieces.reserve(static_cast<std::size_t>(std::ranges::count(line, '\t')) + 1);
    for (std::size_t end = line.find('\t'); end != std::string_view::npos; end = line.find('\t')) {
        pieces.push_back(line.substr(0, end));
        line.remove_prefix(end + 1);
    }
    pieces.push_back(line);
    return pieces;
}
