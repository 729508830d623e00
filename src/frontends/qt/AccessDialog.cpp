#include "frontends/qt/AccessDialog.h"

#include "frontends/qt/Binding.h"
#include "frontends/qt/DialogParts.h"
#include "frontends/qt/ScreenRoom.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace frontend {

namespace {

using accesscheck::Answer;
using accesscheck::Permissions;

constexpr int dialogWidth = 960;
constexpr int dialogHeight = 520;
constexpr int reasonColumn = 7;
constexpr int reasonLines = 4;

QString guestName() {
    return localized("Guest");
}

QString mark(bool isAllowed) {
    return isAllowed ? QStringLiteral("✓") : QStringLiteral("–");
}

} // namespace

AccessDialog::AccessDialog(Questions questions, const std::optional<std::string>& share,
                           const std::optional<std::string>& user, QWidget* parent)
    : QDialog(parent), questions_(std::move(questions)) {
    setObjectName("access");
    setWindowTitle(localized("Check Access"));
    resize(fittedToScreen(*this, QSize(dialogWidth, dialogHeight)));
    subject_ = new QComboBox;
    subject_->setObjectName("accessSubject");
    subject_->setAccessibleName(windowTitle());
    for (const std::string& each : questions_.shares) {
        subject_->addItem(shown(stringWithFormat(NSLocalizedString("Who may use the share \"%@\""), each)));
    }
    subject_->insertSeparator(subject_->count());
    subject_->addItem(localized("What a guest may do"));
    for (const std::string& each : questions_.users) {
        subject_->addItem(shown(stringWithFormat(NSLocalizedString("What \"%@\" may do"), each)));
    }
    list_ = makeList("accessList", windowTitle(),
                     {QString(), localized("Connect"), localized("List"), localized("Read"),
                      localized("Write"), localized("Create"), localized("Delete"), localized("Reason")},
                     reasonColumn);
    for (int column = 0; column < reasonColumn; ++column) {
        list_->header()->setSectionResizeMode(column, QHeaderView::ResizeToContents);
    }
    reason_ = new QLabel;
    reason_->setObjectName("accessReason");
    reason_->setTextFormat(Qt::PlainText);
    reason_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    reason_->setWordWrap(true);
    reason_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    reason_->setMinimumHeight(reasonLines * reason_->fontMetrics().lineSpacing());
    auto* buttons = makeButtons(*this);
    auto* again = addButton(*buttons, localizedTitle("Check Again"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(subject_);
    layout->addWidget(list_, 1);
    layout->addWidget(reason_);
    layout->addWidget(buttons);

    const auto placeIn = [](const std::vector<std::string>& names, const std::string& name) {
        const auto found = std::ranges::find(names, name);
        return found == names.end() ? -1 : static_cast<int>(found - names.begin());
    };
    const int shares = static_cast<int>(questions_.shares.size());
    const int sharePlace = share ? placeIn(questions_.shares, *share) : -1;
    const int userPlace = user ? placeIn(questions_.users, *user) : -1;
    constexpr int aboveUsers = 2; // the separator and the guest
    subject_->setCurrentIndex(sharePlace >= 0  ? sharePlace
                              : userPlace >= 0 ? shares + aboveUsers + userPlace
                              : shares > 0     ? 0
                                               : 1);
    connect(subject_, &QComboBox::currentIndexChanged, this, [this] { fill(); });
    connect(again, &QPushButton::clicked, this, [this] { fill(); });
    connect(list_, &QTreeWidget::currentItemChanged, this, [this] { showReason(); });
    fill();
}

bool AccessDialog::isAboutShare() const {
    return subject_->currentIndex() < static_cast<int>(questions_.shares.size());
}

void AccessDialog::fill() {
    const int subject = subject_->currentIndex();
    const int shares = static_cast<int>(questions_.shares.size());
    answers_.clear();
    list_->clear();
    questions_.begin();
    if (isAboutShare()) {
        const std::string& share = questions_.shares[static_cast<std::size_t>(subject)];
        answers_.push_back(questions_.ask(share, std::nullopt));
        for (const std::string& user : questions_.users) {
            answers_.push_back(questions_.ask(share, user));
        }
    } else {
        const int user = subject - shares - 2;
        for (const std::string& share : questions_.shares) {
            answers_.push_back(questions_.ask(
                share,
                user < 0 ? std::nullopt : std::optional(questions_.users[static_cast<std::size_t>(user)])));
        }
    }
    list_->headerItem()->setText(0, isAboutShare() ? localized("User") : localized("Share"));
    QList<QTreeWidgetItem*> items;
    for (const Answer& answer : answers_) {
        const Permissions& may = answer.may;
        const QString name = !isAboutShare() ? shown(answer.share)
                             : answer.user   ? shown(*answer.user)
                                             : guestName();
        auto* item = new QTreeWidgetItem({name, mark(may.connect), mark(may.list), mark(may.read),
                                          mark(may.write), mark(may.create), mark(may.remove),
                                          answer.reason ? shown(answer.reason->text) : QString()});
        for (int column = 1; column < reasonColumn; ++column) {
            item->setTextAlignment(column, Qt::AlignCenter);
            item->setData(column, Qt::AccessibleTextRole,
                          localized(item->text(column) == mark(true) ? "Yes" : "No"));
        }
        items.push_back(item);
    }
    list_->addTopLevelItems(items);
    list_->setCurrentItem(items.isEmpty() ? nullptr : items.constFirst());
    showReason();
}

void AccessDialog::showReason() {
    const int row = list_->indexOfTopLevelItem(list_->currentItem());
    if (row < 0) {
        reason_->clear();
        return;
    }
    const Answer& answer = answers_[static_cast<std::size_t>(row)];
    std::string text = NSLocalizedString("Everything is allowed.");
    if (answer.reason) {
        text = answer.reason->text + " (" + answer.reason->where + ")";
        if (!answer.reason->remedy.empty()) {
            text += "\n" + stringWithFormat(NSLocalizedString("What would help: %@"), answer.reason->remedy);
        }
    }
    for (const std::string& note : answer.notes) {
        text += "\n" + note;
    }
    reason_->setText(shown(text));
}

} // namespace frontend
