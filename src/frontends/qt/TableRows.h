#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// The text without what tells capital from small letters or a letter from the same one with an accent: what
/// a search and an order go by.
[[nodiscard]] std::string foldedText(std::string_view text);

/// Which rows of a list a view shows, and in which order. The list's own row numbers stay what they are: a
/// place is where a row stands in the view.
class TableRows {
  public:
    /// The text of a list's row in a column.
    using CellText = std::function<std::string(int row, int column)>;

    TableRows(CellText text, int columns) : text_(std::move(text)), columns_(columns) {}

    /// The list has been read again and has so many rows.
    void setLength(int rows);

    /// By the texts of that column, in which digits count as the numbers that they make; -1: the list's own
    /// order.
    void setOrder(int column, bool isDescending);

    /// Shows the rows in which each word of `text` occurs; all of them when there is none.
    void setFilter(const std::string& text);

    /// Leaves out the rows of which `test` says so; none: no row.
    void setLeftOut(std::function<bool(int row)> test) { isLeftOut_ = std::move(test); }

    /// Works out the places anew. The rows `kept` are shown whatever else leaves them out.
    void arrange(const std::vector<int>& kept);

    [[nodiscard]] int count() const { return isPlain_ ? length_ : static_cast<int>(rows_.size()); }

    /// The row at that place.
    [[nodiscard]] int rowAt(int place) const {
        return isPlain_ ? place : rows_[static_cast<std::size_t>(place)];
    }

    /// Where the row stands; -1 when it is not shown.
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
    bool isPlain_ = true; ///< every row at its own number: neither vector below is filled
    std::vector<int> rows_;
    std::vector<int> places_;
    // What is searched while a filter stands: the folded texts of all rows one behind the other.
    std::string texts_;
    std::vector<std::size_t> ends_;
};
