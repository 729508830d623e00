#pragma once

#include "platform/appkit/NSControl.h"

#include <optional>
#include <string>
#include <vector>

/// A grid of check cells, each with a title and a state of its own, enabled together. Rows and columns count
/// from 0.
class NSMatrix : public NSControl {
  public:
    /// Every cell is off and has an empty title. Both counts are at least 1.
    NSMatrix(int rows, int columns);

    [[nodiscard]] int numberOfRows() const { return rows_; }

    [[nodiscard]] int numberOfColumns() const { return columns_; }

    // A row or column that is not there throws std::out_of_range.
    [[nodiscard]] const std::string& titleAt(int row, int column) const;
    void setTitleAt(int row, int column, std::string title);
    [[nodiscard]] int stateAt(int row, int column) const;
    void setStateAt(int row, int column, int state);

    /// Whether the cell's state is the one that a user's click left.
    [[nodiscard]] bool isEditedAt(int row, int column) const;

    /// The states of the cells that are edited.
    [[nodiscard]] std::optional<std::string> edit() const override;

    void copyState(const Element& from) override;

    /// A user's click: the cell changes its state, then the action is sent. Does nothing while disabled.
    void performClickAt(int row, int column);

  private:
    struct Cell {
        std::string title;
        int state = 0;
        std::optional<int> clicked; ///< the state that a user's last click left

        [[nodiscard]] bool isEdited() const { return clicked == state; }
    };

    [[nodiscard]] std::size_t indexOf(int row, int column) const;

    int rows_;
    int columns_;
    std::vector<Cell> cells_;
};
