#include "frontends/qt/TableModel.h"

#include "frontends/qt/Binding.h"
#include "frontends/qt/CellText.h"
#include "frontends/qt/DrawnIcons.h"

#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace frontend {

TableModel::TableModel(NSTableView& table)
    : table_(table), length_(table.numberOfRows()),
      rows_(
          [&table](int row, int column) {
              const auto& shownAs = table.tableColumns()[static_cast<std::size_t>(column)];
              const std::string value = table.objectValue(shownAs, row);
              return shownAs.display.empty() ? value : cellText(shownAs, value).toStdString();
          },
          static_cast<int>(table.tableColumns().size())) {
    rows_.setLength(length_);
}

int TableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_.count();
}

int TableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(table_.tableColumns().size());
}

QVariant TableModel::data(const QModelIndex& index, int role) const {
    const bool isMarked = role == Qt::DecorationRole && index.column() == 0;
    const bool isSpoken = role == Qt::AccessibleTextRole;
    if (role == Qt::AccessibleDescriptionRole) {
        return remarkOf(index);
    }
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole && !isMarked && !isSpoken) {
        return {};
    }
    if (role != Qt::DisplayRole && !isSpoken) {
        if (const QString remark = remarkOf(index); !remark.isEmpty()) {
            return isMarked ? QVariant(markIcon(Mark::Warning)) : QVariant(asItIs(remark));
        }
    }
    if (isMarked) {
        return {};
    }
    const auto& column = table_.tableColumns().at(static_cast<std::size_t>(index.column()));
    const std::string value = table_.objectValue(column, rowAt(index.row()));
    if (isSpoken) {
        const QString spoken = spokenCellText(column, value);
        if (index.column() == 0 && !remarkOf(index).isEmpty()) { // the icon's meaning in words
            return (spoken.isNull() ? cellText(column, value) : spoken) + " (" + localized("Warning") + ')';
        }
        return spoken.isNull() ? QVariant() : QVariant(spoken);
    }
    if (column.display == "privileges" && value.empty() && lacksFolder(rowAt(index.row()))) {
        return role == Qt::ToolTipRole ? asItIs(localized("There is no such folder.")) : QString();
    }
    QString text = cellText(column, value);
    return role == Qt::ToolTipRole ? asItIs(text) : text;
}

bool TableModel::lacksFolder(int row) const {
    const auto known = lacksFolder_.find(row);
    return known != lacksFolder_.end() ? known->second
                                       : lacksFolder_.emplace(row, looksForFolder(row)).first->second;
}

bool TableModel::looksForFolder(int row) const {
    // In these columns a folder without any rights would look like a missing one.
    const NSTableColumn* folder = nullptr;
    for (const NSTableColumn& column : table_.tableColumns()) {
        if (column.display == "privileges" && !table_.objectValue(column, row).empty()) {
            return false;
        }
        folder = column.identifier == "DirectoryPath" ? &column : folder;
    }
    return folder != nullptr && !QFileInfo::exists(shown(table_.objectValue(*folder, row)));
}

QString TableModel::remarkOf(const QModelIndex& index) const {
    return remarkOfRow_ ? remarkOfRow_(rowAt(index.row())) : QString();
}

QVariant TableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) {
        return {};
    }
    if (role == Qt::TextAlignmentRole) {
        return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
    }
    return role == Qt::DisplayRole
               ? QVariant(shown(table_.tableColumns().at(static_cast<std::size_t>(section)).title))
               : QVariant();
}

bool TableModel::reload() {
    lacksFolder_.clear();
    if (length_ == table_.numberOfRows() && !isArranged_) {
        if (length_ > 0) {
            dataChanged(index(0, 0), index(length_ - 1, columnCount() - 1), {Qt::DisplayRole});
        }
        return false;
    }
    beginResetModel();
    length_ = table_.numberOfRows();
    rows_.setLength(length_);
    rows_.arrange(table_.selectedRows());
    endResetModel();
    return true;
}

void TableModel::sort(int column, Qt::SortOrder order) {
    rows_.setOrder(column, order == Qt::DescendingOrder);
    isArranged_ = column >= 0 || rows_.isFiltered();
    rearrange();
}

void TableModel::setFilter(const std::string& text) {
    rows_.setFilter(text);
    isArranged_ = isArranged_ || rows_.isFiltered();
    rearrange();
}

void TableModel::setLeftOut(std::function<bool(int row)> test) {
    rows_.setLeftOut(std::move(test));
    isArranged_ = isArranged_ || rows_.isFiltered();
}

bool TableModel::keepSelectedInView() {
    const auto& selected = table_.selectedRows();
    if (std::ranges::all_of(selected, [this](int row) { return placeOf(row) >= 0; })) {
        return false;
    }
    rearrange();
    return true;
}

void TableModel::rearrange() {
    beginResetModel();
    rows_.arrange(table_.selectedRows());
    endResetModel();
}

} // namespace frontend
