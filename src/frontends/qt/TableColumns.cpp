#include "frontends/qt/TableView.h"

#include "platform/foundation/NSString.h"
#include "platform/foundation/NSUserDefaults.h"

#include <QActionGroup>
#include <QHeaderView>
#include <QMenu>

#include <algorithm>
#include <set>
#include <utility>

namespace frontend {

namespace {

constexpr int tightest =
    80; ///< percent of their width to which columns shrink before the table scrolls sideways

/// Gives the spare width of columns that are wider than necessary to those that are too narrow, first to
/// those that need little, so that one long path does not keep every name short.
void evenOut(std::vector<int>& widths, const std::vector<int>& needs) {
    std::vector<std::size_t> narrow;
    int spare = 0;
    for (std::size_t column = 0; column < widths.size(); ++column) {
        spare += std::max(0, widths[column] - needs[column]);
        if (widths[column] < needs[column]) {
            narrow.push_back(column);
        }
    }
    std::ranges::sort(narrow, {}, [&](std::size_t column) { return needs[column] - widths[column]; });
    int given = 0;
    for (auto each = narrow.begin(); each != narrow.end(); ++each) {
        const int share = (spare - given) / static_cast<int>(narrow.end() - each);
        const int more = std::min(share, needs[*each] - widths[*each]);
        widths[*each] += more;
        given += more;
    }
    for (std::size_t column = 0; column < widths.size() && given > 0; ++column) {
        const int own = std::max(0, widths[column] - needs[column]);
        widths[column] -= (own * given + spare - 1) / spare; // round up: no column may end outside the view
    }
}

} // namespace

// A table's columns: how they share the width, and what a user can arrange: which are shown, in which order,
// how wide, and which one sorts the rows.

void TableView::showColumnMenu(const QPoint& position) {
    QMenu menu;
    fillColumnMenu(menu);
    menu.exec(horizontalHeader()->mapToGlobal(position));
}

void TableView::fillColumnMenu(QMenu& menu) {
    for (int section = 0; section < model_.columnCount(); ++section) {
        QAction* action =
            menu.addAction(title(table_.tableColumns()[static_cast<std::size_t>(section)].title));
        action->setCheckable(true);
        action->setChecked(!isColumnHidden(section));
        // The last column cannot be hidden: without a header to click, none could be shown again.
        action->setEnabled(isColumnHidden(section) ||
                           horizontalHeader()->hiddenSectionCount() + 1 < model_.columnCount());
        connect(action, &QAction::toggled, this, [this, section](bool on) {
            setColumnHidden(section, !on);
            shareWidth();
            remembering_.start();
        });
    }
}

void TableView::fillOrderMenu(QMenu& menu) {
    QHeaderView* header = horizontalHeader();
    const int current = header->sortIndicatorSection();
    auto* group = new QActionGroup(&menu);
    const auto add = [&](const QString& text, int section) {
        QAction* action = menu.addAction(text);
        action->setCheckable(true);
        action->setChecked(section == current);
        group->addAction(action);
        connect(action, &QAction::triggered, header, [header, section, current] {
            const bool turns = section == current && header->sortIndicatorOrder() == Qt::AscendingOrder;
            header->setSortIndicator(section, turns ? Qt::DescendingOrder : Qt::AscendingOrder);
        });
    };
    add(localized("Order of the List"), -1);
    for (int section = 0; section < model_.columnCount(); ++section) {
        add(title(table_.tableColumns()[static_cast<std::size_t>(section)].title), section);
    }
}

std::string TableView::settingsKey() const {
    return "BrindleColumns." + table_.name();
}

void TableView::rememberColumns() const {
    if (table_.name().empty()) {
        return;
    }
    const QHeaderView* header = horizontalHeader();
    std::string text;
    for (int place = 0; place < header->count(); ++place) {
        const int section = header->logicalIndex(place);
        const NSTableColumn& column = table_.tableColumns()[static_cast<std::size_t>(section)];
        text += stringWithFormat("%@\t%d\t%@\t%@\n", column.identifier,
                                 widthsAreUsers_ ? columnWidth(section) : 0,
                                 isColumnHidden(section) ? "hidden" : "shown",
                                 section != header->sortIndicatorSection()             ? ""
                                 : header->sortIndicatorOrder() == Qt::DescendingOrder ? "down"
                                                                                       : "up");
    }
    NSUserDefaults::standardUserDefaults().setString(text, settingsKey());
}

void TableView::restoreColumns() {
    const auto text = NSUserDefaults::standardUserDefaults().stringForKey(settingsKey());
    if (!text || table_.name().empty()) {
        return;
    }
    QHeaderView* header = horizontalHeader();
    int place = 0;
    for (const std::string& line : componentsSeparatedByString(*text, "\n")) {
        const auto parts = componentsSeparatedByString(line, "\t");
        const auto& columns = table_.tableColumns();
        const auto found = std::ranges::find(columns, parts.front(), &NSTableColumn::identifier);
        if (parts.size() != 4 || found == columns.end()) {
            continue; // a column of another version
        }
        const int section = static_cast<int>(found - columns.begin());
        header->moveSection(header->visualIndex(section), place++);
        if (const int width = intValue(parts[1]); width > 0) {
            setColumnWidth(section, width);
            widthsAreUsers_ = true;
        }
        setColumnHidden(section, parts[2] == "hidden");
        if (!parts[3].empty()) {
            const auto order = parts[3] == "down" ? Qt::DescendingOrder : Qt::AscendingOrder;
            header->setSortIndicator(section, order);
            model_.sort(section, order);
        }
    }
    if (header->hiddenSectionCount() == header->count()) {
        setColumnHidden(0, false); // its header is needed to show the others
    }
}

int TableView::leastWidth(int section) const {
    const QHeaderView* header = horizontalHeader();
    const QString title = model_.headerData(section, Qt::Horizontal, Qt::DisplayRole).toString();
    return header->fontMetrics().horizontalAdvance(title) +
           2 * style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, header);
}

int TableView::neededWidth(int section) {
    if (const auto known = neededWidths_.find(section); known != neededWidths_.end()) {
        return known->second;
    }
    const int inView = viewport()->height() / verticalHeader()->defaultSectionSize() + 1;
    int width = std::max(leastWidth(section), horizontalHeader()->minimumSectionSize());
    std::set<QString> measured; // most columns hold few different texts, and measuring one takes long
    for (int place = 0; place < std::min(model_.rowCount(), inView); ++place) {
        const QModelIndex cell = model_.index(place, section);
        const bool isNew = measured.insert(cell.data().toString()).second;
        if (isNew || cell.data(Qt::DecorationRole).isValid()) {
            width = std::max(width, sizeHintForIndex(cell).width());
        }
    }
    return neededWidths_[section] = width;
}

void TableView::shareWidth() {
    if (widthsAreUsers_) {
        return;
    }
    const auto columns = static_cast<std::size_t>(model_.columnCount());
    std::vector<int> widths(columns, 0);
    std::vector<int> needs(columns, 0);
    std::vector<int> titles(columns, 0);
    int wanted = 0;
    int least = 0;
    for (std::size_t column = 0; column < columns; ++column) {
        const int section = static_cast<int>(column);
        if (!isColumnHidden(section)) {
            titles[column] = leastWidth(section);
            widths[column] = std::max(table_.tableColumns()[column].width, titles[column]);
            needs[column] = neededWidth(section);
            wanted += widths[column];
            least += titles[column];
        }
    }
    const int room = viewport()->width();
    const bool isTight = room < wanted && room >= least && room > wanted * tightest / 100;
    for (std::size_t column = 0; column < columns && wanted > 0; ++column) {
        const int title = titles[column];
        if (widths[column] > 0 && isTight) {
            widths[column] = title + (widths[column] - title) * (room - least) / (wanted - least);
        } else if (room > wanted) {
            widths[column] = widths[column] * room / wanted;
        }
    }
    evenOut(widths, needs);
    const bool wasLoading = std::exchange(loading_, true); // a list that is loaded may make the room change
    for (std::size_t column = 0; column < columns; ++column) {
        if (widths[column] > 0) {
            setColumnWidth(static_cast<int>(column), widths[column]);
        }
    }
    loading_ = wasLoading;
}

} // namespace frontend
