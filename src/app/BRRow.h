#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

/// A row of the user or the group table: strings by column identifier. A computer may have tens of thousands
/// of users, so all strings of a row share one piece of memory.
class BRRow {
  public:
    static constexpr std::size_t mostColumns = 5;

    /// `columns` are the identifiers of `texts`, in the same order, at most `mostColumns`. They must outlive
    /// the row.
    BRRow(std::span<const std::string_view> columns, std::initializer_list<std::string_view> texts)
        : columns_(columns) {
        std::size_t size = 0;
        for (const std::string_view text : texts) {
            size += text.size();
        }
        texts_.reserve(size);
        for (std::size_t column = 0; const std::string_view text : texts) {
            texts_ += text;
            ends_.at(column++) = static_cast<std::uint32_t>(texts_.size());
        }
    }

    /// Returns the string in that column, or none. It is valid as long as the row.
    [[nodiscard]] std::optional<std::string_view> valueForKey(std::string_view identifier) const {
        const auto column =
            static_cast<std::size_t>(std::ranges::find(columns_, identifier) - columns_.begin());
        if (column == columns_.size()) {
            return std::nullopt;
        }
        const std::size_t start = column == 0 ? 0 : ends_.at(column - 1);
        return std::string_view(texts_).substr(start, ends_.at(column) - start);
    }

    /// The same for a column that every row has; throws std::out_of_range for any other.
    [[nodiscard]] std::string at(std::string_view identifier) const {
        const auto text = valueForKey(identifier);
        if (!text) {
            throw std::out_of_range("a row has no column " + std::string(identifier));
        }
        return std::string(*text);
    }

  private:
    std::span<const std::string_view> columns_;
    std::array<std::uint32_t, mostColumns> ends_{}; ///< of each text in `texts_`
    std::string texts_;
};
