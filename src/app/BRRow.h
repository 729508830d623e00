#pragma once

#include <algorithm>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// A row of the user or the group table: strings by column identifier. A computer may have tens of thousands
/// of users, so a row is a single allocation.
class BRRow {
  public:
    struct Cell {
        std::string_view identifier; ///< a literal
        std::string text;
    };

    struct Text {
        std::string_view identifier; ///< a literal
        std::string_view text;
    };

    BRRow(std::initializer_list<Text> texts) {
        cells_.reserve(texts.size());
        for (const Text& each : texts) {
            cells_.push_back({each.identifier, std::string(each.text)});
        }
    }

    /// Returns the string in that column, or null.
    [[nodiscard]] const std::string* valueForKey(std::string_view identifier) const {
        const auto cell = std::ranges::find(cells_, identifier, &Cell::identifier);
        return cell == cells_.end() ? nullptr : &cell->text;
    }

    /// The same for a column that every row has; throws std::out_of_range for any other.
    [[nodiscard]] const std::string& at(std::string_view identifier) const {
        const std::string* text = valueForKey(identifier);
        if (text == nullptr) {
            throw std::out_of_range("a row has no column " + std::string(identifier));
        }
        return *text;
    }

  private:
    std::vector<Cell> cells_;
};
