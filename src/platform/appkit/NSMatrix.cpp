#include "platform/appkit/NSMatrix.h"

#include "platform/foundation/NSString.h"

#include <algorithm>
#include <stdexcept>

NSMatrix::NSMatrix(int rows, int columns) : rows_(rows), columns_(columns) {
    if (rows < 1 || columns < 1) {
        throw std::invalid_argument(stringWithFormat("a matrix of %d x %d cells has no cell", rows, columns));
    }
    cells_.resize(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns));
}

std::size_t NSMatrix::indexOf(int row, int column) const {
    if (row < 0 || row >= rows_ || column < 0 || column >= columns_) {
        throw std::out_of_range(stringWithFormat("the matrix has no cell in row %d, column %d: it is %d x %d",
                                                 row, column, rows_, columns_));
    }
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
           static_cast<std::size_t>(column);
}

const std::string& NSMatrix::titleAt(int row, int column) const {
    return cells_[indexOf(row, column)].title;
}

void NSMatrix::setTitleAt(int row, int column, std::string title) {
    cells_[indexOf(row, column)].title = std::move(title);
    didChange();
}

int NSMatrix::stateAt(int row, int column) const {
    return cells_[indexOf(row, column)].state;
}

void NSMatrix::setStateAt(int row, int column, int state) {
    cells_[indexOf(row, column)].state = state == 0 ? 0 : 1;
    didChange();
}

bool NSMatrix::isEditedAt(int row, int column) const {
    return cells_[indexOf(row, column)].isEdited();
}

std::optional<std::string> NSMatrix::edit() const {
    std::string states;
    for (const Cell& cell : cells_) {
        states += cell.isEdited() ? std::to_string(cell.state) : "-";
    }
    return std::ranges::any_of(cells_, &Cell::isEdited) ? std::optional(states) : std::nullopt;
}

void NSMatrix::forgetEdit() {
    for (Cell& cell : cells_) {
        cell.clicked.reset();
    }
}

void NSMatrix::copyState(const Element& from) {
    NSControl::copyState(from);
    cells_ = dynamic_cast<const NSMatrix&>(from).cells_;
}

void NSMatrix::performClickAt(int row, int column) {
    if (!isEnabled()) {
        return;
    }
    setStateAt(row, column, stateAt(row, column) == 0 ? 1 : 0);
    cells_[indexOf(row, column)].clicked = stateAt(row, column);
    sendAction();
}
