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

    // These throw std::out_of_range for a row or column that does not exist.
    [[nodiscard]] const std::string& titleAt(int row, int column) const;
    void setTitleAt(int row, int column, std::string title);
    [[nodiscard]] int stateAt(int row, int column) const;
    void setStateAt(int row, int column, int state);

    /// Whether the cell is still in the state that the user's last click left it in.
    [[nodiscard]] bool isEditedAt(int row, int column) const;

    /// The states of the cells that the user has edited.
    [[nodiscard]] std::optional<std::string> edit() const override;

    void forgetEdit() override;

    void copyState(const Element& from) override;

    /// Does what a user's click does: the cell changes its state, then the action is sent. Does nothing while
    /// disabled.
    void performClickAt(int row, int column);

  private:
    struct Cell {
        std::string title;
        int state = 0;
        std::optional<int> clicked; ///< the state after the user's last click

        [[nodiscard]] bool isEdited() const { return clicked == state; }
    };

    [[nodiscard]] std::size_t indexOf(int row, int column) const;

    int rows_;
    int columns_;
    std::vector<Cell> cells_;
};
