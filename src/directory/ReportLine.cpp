#include "directory/ReportLine.h"

#include <algorithm>
#include <stdexcept>
#include <string>

ReportPieces::ReportPieces(std::string_view line) {
    for (std::size_t start = 0; start != std::string_view::npos; ++size_) {
        const std::size_t end = line.find('\t', start);
        if (size_ < mostKept) {
            pieces_[size_] = line.substr(start, end - start);
        }
        start = end == std::string_view::npos ? end : end + 1;
    }
}

std::string_view ReportPieces::at(std::size_t index) const {
    if (index >= std::min(size_, mostKept)) {
        throw std::out_of_range("a report line has no piece " + std::to_string(index));
    }
    return pieces_[index];
}
