#include "frontends/qt/FindingsDialog.h"

#include "frontends/qt/Binding.h"
#include "frontends/qt/DialogParts.h"
#include "frontends/qt/DrawnIcons.h"
#include "frontends/qt/ScreenRoom.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace frontend {

namespace {

using accesscheck::Finding;

constexpr int dialogWidth = 760;
constexpr int dialogHeight = 460;
constexpr int whereWidth = 220;
constexpr int padding = 4;

/// Where something is wrong, by the names in the window's lists.
std::string placeOf(const Finding& finding) {
    using Text = std::pair<std::string_view, const char*>;
    for (const auto& [folder, text] : {Text("/config/Brindle/", "Share \"%@\""),
                                       Text("/users/", "User \"%@\""), Text("/groups/", "Group \"%@\"")}) {
        if (finding.where.starts_with(folder)) {
            return stringWithFormat(NSLocalizedString(text), finding.where.substr(folder.size()));
        }
    }
    if (finding.where == finding.user) {
        return stringWithFormat(NSLocalizedString("User \"%@\""), finding.where);
    }
    return finding.where;
}

std::string counted(std::ptrdiff_t count, const char* one, const char* several) {
    return count == 1 ? NSLocalizedString(one)
                      : stringWithFormat(NSLocalizedString(several), std::to_string(count));
}

std::string summaryOf(const std::vector<Finding>& findings) {
    const auto problems = std::ranges::count(findings, Finding::Level::Problem, &Finding::level);
    const auto notes = std::ssize(findings) - problems;
    if (notes == 0) {
        return problems == 0 ? NSLocalizedString("No problem was found.")
                             : counted(problems, "One problem was found.", "%@ problems were found.");
    }
    return stringWithFormat(NSLocalizedString("%@; %@."),
                            problems == 0 ? NSLocalizedString("No problems")
                                          : counted(problems, "One problem", "%@ problems"),
                            counted(notes, "one note", "%@ notes"));
}

/// Draws rows as high as their wrapped texts.
class WrappedRows : public QStyledItemDelegate {
  public:
    explicit WrappedRows(QTreeWidget& list) : QStyledItemDelegate(&list), list_(list) {
        list.setUniformRowHeights(false);
        list.setWordWrap(true);
        list.setItemDelegate(this);
        connect(list.header(), &QHeaderView::sectionResized, this,
                [this] { Q_EMIT sizeHintChanged(QModelIndex()); });
    }

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override {
        QStyleOptionViewItem wrapped = option;
        wrapped.rect = QRect(0, 0, list_.columnWidth(index.column()), 1);
        return QStyledItemDelegate::sizeHint(wrapped, index) + QSize(0, padding);
    }

  private:
    QTreeWidget& list_;
};

} // namespace

FindingsDialog::FindingsDialog(std::function<accesscheck::Examination()> examine, QWidget* parent)
    : QDialog(parent), examine_(std::move(examine)) {
    setObjectName("findings");
    setWindowTitle(localized("Check This Computer"));
    resize(fittedToScreen(*this, QSize(dialogWidth, dialogHeight)));
    summary_ = new QLabel;
    summary_->setObjectName("findingsSummary");
    summary_->setTextFormat(Qt::PlainText);
    list_ = makeList("findingsList", windowTitle(), {localized("Finding"), localized("Where")}, 0);
    list_->setColumnWidth(1, whereWidth);
    new WrappedRows(*list_); // a child of the list
    details_ = makeDetails("findingDetails");
    auto* buttons = makeButtons(*this);
    auto* again = addButton(*buttons, localizedTitle("Check Again"));
    connect(again, &QPushButton::clicked, this, [this] { fill(); });
    connect(list_, &QTreeWidget::currentItemChanged, this, [this] { showFinding(); });
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(summary_);
    layout->addWidget(list_, 2);
    layout->addWidget(details_, 1);
    layout->addWidget(buttons);
    fill();
}

void FindingsDialog::fill() {
    list_->clear();
    found_ = examine_();
    std::ranges::stable_sort(found_.findings, {}, &Finding::level);
    for (const Finding& each : found_.findings) {
        auto* item = new QTreeWidgetItem(list_, {shown(each.text), shown(placeOf(each))});
        item->setIcon(0, markIcon(each.level == Finding::Level::Problem ? Mark::Warning : Mark::Information));
        if (each.level == Finding::Level::Problem) { // the icon's meaning in words
            item->setData(0, Qt::AccessibleTextRole, localized("Warning") + ": " + shown(each.text));
        }
        item->setToolTip(0, asItIs(shown(each.text)));
        item->setToolTip(1, asItIs(shown(placeOf(each))));
    }
    summary_->setText(shown(summaryOf(found_.findings)));
    list_->setCurrentItem(list_->topLevelItem(0));
    showFinding();
}

void FindingsDialog::showFinding() {
    const int row = list_->indexOfTopLevelItem(list_->currentItem());
    QString text;
    if (row >= 0) {
        const Finding& finding = found_.findings[static_cast<std::size_t>(row)];
        text = shown(finding.text + "\n" + placeOf(finding));
        if (!finding.remedy.empty()) {
            text += shown("\n\n" + NSLocalizedString("How to fix it:") + "\n" + finding.remedy);
        }
    }
    for (const std::string& note : found_.notes) {
        text += shown((text.isEmpty() ? "" : "\n\n") + note);
    }
    details_->setPlainText(text);
}

} // namespace frontend
