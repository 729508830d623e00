#include "frontends/qt/TableView.h"

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/NSUserDefaults.h"

#include <QActionGroup>
#include <QHeaderView>
#include <QMenu>

#include <algorithm>

// What a user arranges in a table's columns: which are shown, in which order and how wide, and which of them
// sorts the rows.

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
        // A table without a column could not be given one again: it would have no header to click.
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
    add(shown(NSLocalizedString("Order of the List")), -1);
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
            continue; // of another version
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
        setColumnHidden(0, false); // its header is the way to the others
    }
}
