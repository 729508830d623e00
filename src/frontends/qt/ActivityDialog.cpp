#include "frontends/qt/ActivityDialog.h"

#include "frontends/qt/Binding.h"
#include "frontends/qt/DialogParts.h"
#include "frontends/qt/DrawnIcons.h"
#include "frontends/qt/PlainStyle.h"
#include "frontends/qt/ScreenRoom.h"
#include "platform/appkit/NSAlert.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFontDatabase>
#include <QHeaderView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSaveFile>
#include <QScrollBar>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace frontend {

namespace {

constexpr int dialogWidth = 720;
constexpr int dialogHeight = 440;
constexpr int timeWidth = 90;
constexpr int outcomeWidth = 80;
constexpr std::array<const char*, 3> columnTitles = {"Time", "What", "Outcome"};

enum Column { timeColumn, textColumn, outcomeColumn };

QVariant markOf(const ActivityEntry& entry) {
    return entry.hasFailed || entry.hasBeeped ? QVariant(markIcon(Mark::Warning)) : QVariant();
}

} // namespace

int ActivityModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_;
}

int ActivityModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columnTitles.size());
}

const ActivityEntry* ActivityModel::entry(int row) const {
    const auto& entries = activity_.entries();
    const std::size_t number = dropped_ + static_cast<std::size_t>(std::max(row, 0));
    const std::size_t place = number - activity_.droppedEntries(); // wraps beyond the end for a dropped entry
    return row < 0 || place >= entries.size() ? nullptr : &entries[place];
}

QVariant ActivityModel::data(const QModelIndex& index, int role) const {
    const ActivityEntry* each = entry(index.row());
    if (each == nullptr) {
        return {};
    }
    if (role == Qt::DecorationRole && index.column() == textColumn) {
        return markOf(*each);
    }
    if (role != Qt::DisplayRole) {
        return {};
    }
    switch (index.column()) {
    case timeColumn:
        return each->time.toString(QStringLiteral("HH:mm:ss"));
    case textColumn:
        return shown(each->text);
    default:
        return outcomeText(*each);
    }
}

QVariant ActivityModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role == Qt::TextAlignmentRole) {
        return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
    }
    return role == Qt::DisplayRole && orientation == Qt::Horizontal
               ? QVariant(localized(columnTitles.at(static_cast<std::size_t>(section))))
               : QVariant();
}

void ActivityModel::update() {
    const auto gone = static_cast<int>(
        std::min<std::size_t>(activity_.droppedEntries() - dropped_, static_cast<std::size_t>(rows_)));
    if (gone > 0) {
        beginRemoveRows({}, 0, gone - 1);
        rows_ -= gone;
        dropped_ = activity_.droppedEntries();
        endRemoveRows();
    }
    dropped_ = activity_.droppedEntries();
    if (const auto rows = static_cast<int>(activity_.entries().size()); rows > rows_) {
        beginInsertRows({}, rows_, rows - 1);
        rows_ = rows;
        endInsertRows();
    }
}

ActivityDialog::ActivityDialog(const Activity& activity, QWidget* parent)
    : QDialog(parent), activity_(activity), model_(activity), table_(new QTableView),
      details_(makeDetails("activityDetails")) {
    setObjectName("activity");
    setWindowTitle(localized("Activity"));
    resize(fittedToScreen(*this, QSize(dialogWidth, dialogHeight)));
    table_->setObjectName("activityList");
    table_->setAccessibleName(localized("Activity"));
    table_->setModel(&model_);
    table_->setSelectionBehavior(QTableView::SelectRows);
    table_->setSelectionMode(QTableView::SingleSelection);
    table_->setShowGrid(false);
    table_->setWordWrap(false);
    table_->setTabKeyNavigation(false);
    table_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table_->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + rowPadding);
    table_->verticalHeader()->hide();
    QHeaderView* header = table_->horizontalHeader();
    header->setHighlightSections(false);
    header->setSectionResizeMode(textColumn, QHeaderView::Stretch);
    header->resizeSection(timeColumn, timeWidth);
    header->resizeSection(outcomeColumn, outcomeWidth);
    details_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    details_->setPlaceholderText(localized("Select a line to see all of it, and what its tool said."));
    auto* buttons = makeButtons(*this);
    auto* save = addButton(*buttons, localizedTitle("Save as Text…"));
    connect(save, &QPushButton::clicked, this, [this] { saveAsText(); });
    connect(table_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this] { showCurrent(); });
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(table_, 3);
    layout->addWidget(details_, 1);
    layout->addWidget(buttons);
    reload();
}

void ActivityDialog::reload() {
    const QScrollBar* bar = table_->verticalScrollBar();
    // Someone who reads further up must not lose their place.
    const bool isAtEnd = bar->value() == bar->maximum();
    model_.update();
    if (isAtEnd) {
        table_->scrollToBottom();
    }
}

void ActivityDialog::showCurrent() {
    const ActivityEntry* entry = model_.entry(table_->currentIndex().row());
    details_->setPlainText(entry == nullptr ? QString()
                                            : shown(entry->text) + QLatin1Char('\n') + shown(entry->output));
}

void ActivityDialog::saveAsText() {
    const QString path = QFileDialog::getSaveFileName(this, localized("Save as Text…"),
                                                      QStringLiteral("brindle-activity.txt"));
    if (path.isEmpty()) {
        return;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(activity_.text().toUtf8()) < 0 || !file.commit()) {
        NSRunAlertPanel(NSLocalizedString("Not Saved"), "%@", NSLocalizedString("OK"), std::nullopt,
                        std::nullopt,
                        stringWithFormat(NSLocalizedString("The file %@ cannot be written: %@."),
                                         path.toStdString(), file.errorString().toStdString()));
    }
}

} // namespace frontend
