#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace frontend {

/// Returns the text without differences of case and accents, for searching and sorting.
[[nodiscard]] std::string foldedText(std::string_view text);

/// Decides which rows of a list a view shows, and in which order. A "row" is a row number of the list, which
/// never changes here; a "place" is a position in the view.
class TableRows {
  public:
    /// Returns the text of a list's row in a column.
    using CellText = std::function<std::string(int row, int column)>;

    TableRows(CellText text, int columns) : text_(std::move(text)), columns_(columns) {}

    /// Says that the list was read again and now has that many rows.
    void setLength(int rows);

    /// Sorts by the texts of that column, comparing numbers in them by value; -1 for the list's own order.
    void setOrder(int column, bool isDescending);

    /// Shows only the rows that contain every word of `text`; all rows when it has no words.
    void setFilter(const std::string& text);

    /// Leaves out the rows for which `test` returns true; an empty function leaves out none.
    void setLeftOut(std::function<bool(int row)> test) { isLeftOut_ = std::move(test); }

    /// Recomputes the places. The rows in `kept` are shown even if something else leaves them out.
    void arrange(const std::vector<int>& kept);

    [[nodiscard]] int count() const { return isPlain_ ? length_ : static_cast<int>(rows_.size()); }

    /// Returns the row at that place.
    [[nodiscard]] int rowAt(int place) const {
        return isPlain_ ? place : rows_[static_cast<std::size_t>(place)];
    }

    /// Returns the place of the row; -1 when it is not shown.
    [[nodiscard]] int placeOf(int row) const {
        return isPlain_ ? row : places_[static_cast<std::size_t>(row)];
    }

    [[nodiscard]] bool isFiltered() const { return !words_.empty() || isLeftOut_; }

  private:
    void readTexts();
    [[nodiscard]] bool matches(int row) const;
    void sort();

    CellText text_;
    int columns_;
    int length_ = 0;
    int column_ = -1;
    bool isDescending_ = false;
    std::vector<std::string> words_;
    std::function<bool(int row)> isLeftOut_;
    bool isPlain_ = true; ///< every row is at its own place: neither vector below is filled
    std::vector<int> rows_;
    std::vector<int> places_;
    // While there is a filter: the folded texts of all rows, one after the other, and where each ends.
    std::string texts_;
    std::vector<std::size_t> ends_;
};

} // namespace frontend
