#pragma once

#include <array>
#include <cstddef>
#include <string_view>

/// What a report shows for a property without values.
inline constexpr std::string_view reportNoValue = "#NoValue#";

/// The pieces of a report line: a field for each requested property, in the requested order, and a last piece
/// with the line's end. A value that contains a tab gives additional pieces. They are parts of the line,
/// which must outlive them.
class ReportPieces {
  public:
    explicit ReportPieces(std::string_view line);

    [[nodiscard]] std::size_t size() const { return size_; }

    /// Throws std::out_of_range when the line has no such piece.
    [[nodiscard]] std::string_view at(std::size_t index) const;

  private:
    /// More than any report has. Further pieces come from tabs in values; they are counted, but not kept.
    static constexpr std::size_t mostKept = 10;

    std::array<std::string_view, mostKept> pieces_;
    std::size_t size_ = 0;
};
