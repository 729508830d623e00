#include "frontends/qt/TableView.h"

#include "frontends/qt/PlainStyle.h"
#include "platform/appkit/NSApplication.h"

#include <QGuiApplication>
#include <QHeaderView>
#include <QResizeEvent>
#include <QStyledItemDelegate>

#include <algorithm>
#include <memory>
#include <span>

namespace frontend {

namespace {

constexpr int smallestColumn = 40;

/// Elides a path in its middle, so that both ends stay readable, and other texts at the end.
class CellDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        option->textElideMode = option->text.startsWith(QLatin1Char('/')) ? Qt::ElideMiddle : Qt::ElideRight;
    }
};

/// Returns the rows as ranges of the model, one for each run of adjacent rows.
QItemSelection selectionOf(const TableModel& model, std::span<const int> selected) {
    std::vector<int> rows(selected.size());
    std::ranges::transform(selected, rows.begin(), [&model](int row) { return model.placeOf(row); });
    std::ranges::sort(rows);
    QItemSelection selection;
    for (std::size_t first = 0; first < rows.size();) {
        std::size_t last = first;
        while (last + 1 < rows.size() && rows[last + 1] == rows[last] + 1) {
            ++last;
        }
        selection.append(QItemSelectionRange(model.index(rows[first], 0),
                                             model.index(rows[last], model.columnCount() - 1)));
        first = last + 1;
    }
    return selection;
}

std::vector<int> rowsOf(const TableModel& model, const QItemSelection& selection) {
    std::vector<int> rows;
    for (const QItemSelectionRange& range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            rows.push_back(model.rowAt(row));
        }
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

} // namespace

TableView::TableView(NSTableView& table, const std::string& nameColumn, RefreshQueue& queue)
    : table_(table), queue_(queue), model_(table), nameColumn_(table.tableColumnWithIdentifier(nameColumn)) {
    setModel(&model_);
    setSelectionBehavior(SelectRows);
    setSelectionMode(table.allowsMultipleSelection() ? ExtendedSelection : SingleSelection);
    setEditTriggers(NoEditTriggers);
    setAlternatingRowColors(true);
    setShowGrid(false);
    setWordWrap(false);
    setTabKeyNavigation(false); // Tab leaves the table for the next control
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollMode(ScrollPerPixel);
    setItemDelegate(new CellDelegate(this));
    setCornerButtonEnabled(false);
    setUpHeader();
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { userSelected(); });
    reloaded_ = new Binding(this, queue, table.reloaded, [this] { reload(); });
    new Binding(this, queue, table.changed, [this] {
        setEnabled(table_.isEnabled());
        followNames();
        loadSelection();
    });
}

void TableView::setUpHeader() {
    const int height = fontMetrics().height() + rowPadding;
    // Fixed row height: measuring rows would request every cell of a long table.
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(height);
    verticalHeader()->setDefaultSectionSize(height);
    verticalHeader()->hide();
    QHeaderView* header = horizontalHeader();
    header->setHighlightSections(false);
    header->setMinimumSectionSize(smallestColumn);
    header->setStretchLastSection(true);
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    header->setSectionsMovable(true);
    header->setSortIndicatorClearable(true); // a third click restores the list's own order
    header->setSortIndicator(-1, Qt::AscendingOrder);
    header->setSectionsClickable(true);
    header->setSortIndicatorShown(true);
    int section = 0;
    for (const NSTableColumn& column : table_.tableColumns()) {
        setColumnHidden(section, column.hidden);
        setColumnWidth(section, column.width);
        ++section;
    }
    restoreColumns();
    connect(header, &QHeaderView::customContextMenuRequested, this, &TableView::showColumnMenu);
    connect(header, &QHeaderView::sectionResized, this, [this] {
        // Not only the user changes widths while the pointer rests on the header.
        if (!loading_ && horizontalHeader()->underMouse() &&
            QGuiApplication::mouseButtons().testFlag(Qt::LeftButton)) {
            widthsAreUsers_ = true;
            remembering_.start();
        }
    });
    connect(header, &QHeaderView::sectionMoved, &remembering_, qOverload<>(&QTimer::start));
    connect(header, &QHeaderView::sortIndicatorChanged, this, [this](int column, Qt::SortOrder order) {
        loading_ = true;
        model_.sort(column, order);
        loading_ = false;
        shownSelection_.clear();
        loadSelection();
        remembering_.start();
    });
    constexpr int settled = 300; // milliseconds: a width changes with every step of the mouse
    remembering_.setSingleShot(true);
    remembering_.setInterval(settled);
    connect(&remembering_, &QTimer::timeout, this, &TableView::rememberColumns);
}

void TableView::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    if (event->size().height() != event->oldSize().height()) {
        neededWidths_.clear(); // there are other rows in view
    }
    shareWidth();
}

void TableView::reload() {
    remarks_.clear();
    loading_ = true;
    if (namesLeftOut_ && nameColumn_ != nullptr) {
        const auto names = std::make_shared<const std::set<std::string>>(namesLeftOut_());
        const auto isLeftOut = [this, names](int row) {
            return names->contains(table_.objectValue(*nameColumn_, row));
        };
        model_.setLeftOut(names->empty() ? std::function<bool(int)>() : isLeftOut);
    }
    if (model_.reload()) {
        shownSelection_.clear(); // Qt has dropped it with the old rows
    }
    loading_ = false;
    neededWidths_.clear();
    shareWidth();
    followNames();
    loadSelection();
}

void TableView::setRemarks(std::function<std::string(const std::string& name, int row)> remark) {
    remark_ = std::move(remark);
    remarks_.clear();
    neededWidths_.clear(); // a mark takes room
    model_.setRemarkOfRow(remark_ ? [this](int row) { return remarkOfRow(row); }
                                  : std::function<QString(int)>());
    viewport()->update();
}

void TableView::setLeftOut(std::function<std::set<std::string>()> names) {
    namesLeftOut_ = std::move(names);
    reloadLater();
}

QString TableView::remarkOfRow(int row) {
    if (nameColumn_ == nullptr || !remark_) {
        return {};
    }
    const std::string name = table_.objectValue(*nameColumn_, row);
    const auto known = remarks_.find(name);
    return known != remarks_.end() ? known->second
                                   : remarks_.emplace(name, shown(remark_(name, row))).first->second;
}

void TableView::followNames() {
    // A sheet works on the row that was selected when it opened, so do not change the selection while it is
    // open.
    if (nameColumn_ == nullptr || NSApp().attachedSheet() != nullptr) {
        return;
    }
    std::map<int, std::string> selected;
    std::set<std::string> moved;
    bool isRefilled = false; // the editor shows what is now in the old row
    std::vector<int> rows = table_.selectedRows();
    rows.insert(rows.end(), table_.droppedRows().begin(), table_.droppedRows().end());
    for (const int row : rows) {
        std::string name = table_.objectValue(*nameColumn_, row);
        const auto before = namesOfSelected_.find(row);
        if (before != namesOfSelected_.end() && before->second != name) {
            moved.insert(before->second);
            isRefilled = isRefilled || (nameField_ != nullptr && nameField_->stringValue() == name);
        } else if (row < table_.numberOfRows()) {
            selected.emplace(row, std::move(name));
        }
    }
    const std::size_t stayed = selected.size();
    findRows(moved, selected);
    const bool isTold = isRefilled || selected.size() == stayed;
    std::vector<int> now;
    for (const auto& [row, name] : selected) {
        now.push_back(row);
    }
    namesOfSelected_ = std::move(selected);
    NSApp().dispatch([this, isTold, &now] {
        if (isTold) {
            table_.tellOfDroppedSelection();
            table_.selectRows(std::move(now));
        } else {
            table_.moveSelection(std::move(now));
        }
    });
}

void TableView::findRows(const std::set<std::string>& moved, std::map<int, std::string>& selected) const {
    std::map<std::string, std::vector<int>> found;
    for (int row = 0; !moved.empty() && row < table_.numberOfRows(); ++row) {
        if (std::string name = table_.objectValue(*nameColumn_, row); moved.contains(name)) {
            found[std::move(name)].push_back(row);
        }
    }
    for (const auto& [name, rows] : found) {
        if (rows.size() == 1) {
            selected.emplace(rows.front(), name);
        }
    }
}

void TableView::loadSelection() {
    if (shownSelection_ == table_.selectedRows() || model_.length() != table_.numberOfRows()) {
        return; // in the latter case a reload is pending, which also loads the selection
    }
    shownSelection_ = table_.selectedRows();
    loading_ = true;
    model_.keepSelectedInView();
    selectionModel()->select(selectionOf(model_, shownSelection_),
                             QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    if (!shownSelection_.empty()) {
        const QModelIndex first = model_.index(model_.placeOf(shownSelection_.front()), firstShownColumn());
        selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
        scrollTo(first);
    }
    loading_ = false;
}

int TableView::firstShownColumn() const {
    int column = 0;
    while (column + 1 < model_.columnCount() && isColumnHidden(column)) {
        ++column;
    }
    return column;
}

void TableView::userSelected() {
    if (loading_) {
        return;
    }
    shownSelection_ = rowsOf(model_, selectionModel()->selection());
    queue_.runUserEvent([this] { table_.selectRows(shownSelection_); });
    loadSelection();
}

} // namespace frontend
