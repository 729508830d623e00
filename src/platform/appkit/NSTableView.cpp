#include "platform/appkit/NSTableView.h"

#include <algorithm>
#include <utility>

void NSTableView::addTableColumn(NSTableColumn column) {
    columns_.push_back(std::move(column));
    didChange();
}

const NSTableColumn* NSTableView::tableColumnWithIdentifier(std::string_view identifier) const {
    const auto found = std::ranges::find(columns_, identifier, &NSTableColumn::identifier);
    return found == columns_.end() ? nullptr : &*found;
}

std::string NSTableView::objectValue(const NSTableColumn& column, int row) {
    if (source_ == nullptr || row < 0 || row >= rows_) {
        return {};
    }
    return source_->tableViewObjectValueForTableColumn(this, column, row);
}

void NSTableView::reloadData() {
    rows_ = source_ == nullptr ? 0 : std::max(0, source_->numberOfRowsInTableView(this));
    const bool hadSelection = !selection_.empty();
    selection_.erase(std::lower_bound(selection_.begin(), selection_.end(), rows_), selection_.end());
    selectionWasDropped_ = (hadSelection || selectionWasDropped_) && selection_.empty();
    isLoaded_ = true;
    reloaded.emit();
}

void NSTableView::tellOfDroppedSelection() {
    if (std::exchange(selectionWasDropped_, false) && delegate_ != nullptr) {
        delegate_->tableViewSelectionDidChange(this);
    }
}

void NSTableView::selectRows(std::vector<int> rows) {
    selectionWasDropped_ = false;
    std::erase_if(rows, [this](int row) { return row < 0 || row >= rows_; });
    if (!multiple_ && rows.size() > 1) {
        rows.resize(1);
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    if (rows == selection_) {
        return;
    }
    selection_ = std::move(rows);
    didChange();
    if (delegate_ != nullptr) {
        delegate_->tableViewSelectionDidChange(this);
    }
}

void NSTableView::copyState(const Element& from) {
    NSControl::copyState(from);
    const auto& other = dynamic_cast<const NSTableView&>(from);
    rows_ = other.rows_;
    selection_ = other.selection_;
}
