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
    const auto firstGone = std::lower_bound(selection_.begin(), selection_.end(), rows_);
    dropped_.insert(dropped_.end(), firstGone, selection_.end());
    selection_.erase(firstGone, selection_.end());
    isLoaded_ = true;
    reloaded.emit();
}

void NSTableView::tellOfDroppedSelection() {
    if (!std::exchange(dropped_, {}).empty() && selection_.empty() && delegate_ != nullptr) {
        delegate_->tableViewSelectionDidChange(this);
    }
}

void NSTableView::selectRows(std::vector<int> rows) {
    dropped_.clear();
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

void NSTableView::moveSelection(std::vector<int> rows) {
    NSTableViewDelegate* told = std::exchange(delegate_, nullptr);
    selectRows(std::move(rows));
    delegate_ = told;
}

void NSTableView::copyState(const Element& from) {
    NSControl::copyState(from);
    const auto& other = dynamic_cast<const NSTableView&>(from);
    rows_ = other.rows_;
    selection_ = other.selection_;
}
