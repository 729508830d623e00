#include "frontends/qt/SessionsDialog.h"

#include "frontends/qt/Binding.h"
#include "frontends/qt/DialogParts.h"
#include "frontends/qt/ScreenRoom.h"
#include "platform/appkit/NSAlert.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"

#include <QDateTime>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace frontend {

namespace {

using platform::Session;
using review::Disconnection;

constexpr int dialogWidth = 700;
constexpr int dialogHeight = 420;
constexpr int kindRole = Qt::UserRole;     ///< the Disconnection that the row offers
constexpr int nameRole = Qt::UserRole + 1; ///< the address or the share to disconnect

QString timeText(std::int64_t time) {
    return time == 0 ? QString()
                     : QLocale().toString(QDateTime::fromSecsSinceEpoch(time), QLocale::ShortFormat);
}

void offer(QTreeWidgetItem& item, Disconnection kind, const std::string& what) {
    item.setData(0, kindRole, static_cast<int>(kind));
    item.setData(0, nameRole, QByteArray::fromStdString(what));
}

} // namespace

SessionsDialog::SessionsDialog(Server server, QWidget* parent) : QDialog(parent), server_(std::move(server)) {
    setObjectName("sessions");
    setWindowTitle(localized("Who Is Connected"));
    resize(fittedToScreen(*this, QSize(dialogWidth, dialogHeight)));
    summary_ = new QLabel;
    summary_->setObjectName("sessionsSummary");
    summary_->setTextFormat(Qt::PlainText);
    summary_->setWordWrap(true);
    list_ = makeList("sessionsList", windowTitle(),
                     {localized("User"), localized("Computer"), localized("Since")}, 0);
    list_->setRootIsDecorated(true); // a session can be expanded to show its shares
    auto* buttons = makeButtons(*this);
    auto* again = addButton(*buttons, localizedTitle("Look Again"));
    disconnect_ = addButton(*buttons, localizedTitle("Disconnect…"));
    disconnect_->setObjectName("disconnect");
    connect(again, &QPushButton::clicked, this, [this] { fill(); });
    connect(disconnect_, &QPushButton::clicked, this, [this] { disconnectSelected(); });
    connect(list_, &QTreeWidget::currentItemChanged, this, [this] { updateButton(); });
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(summary_);
    layout->addWidget(list_, 1);
    layout->addWidget(buttons);
    fill();
}

void SessionsDialog::fill() {
    list_->clear();
    const auto sessions = server_.sessions();
    if (!sessions.isOk()) {
        summary_->setText(shown(sessions.status().text()));
        updateButton();
        return;
    }
    for (const Session& each : *sessions) {
        auto* session =
            new QTreeWidgetItem(list_, {shown(each.user), shown(each.computer), timeText(each.since())});
        offer(*session, Disconnection::Computer, each.address);
        for (const Session::Share& share : each.shares) {
            auto* item = new QTreeWidgetItem(
                session, {shown(stringWithFormat(NSLocalizedString("Share \"%@\""), share.name)), QString(),
                          timeText(share.since)});
            offer(*item, Disconnection::Share, share.name);
        }
        for (const Session::File& file : each.files) {
            const std::string& format = file.isWritten ? NSLocalizedString("%@ (open for writing)")
                                                       : NSLocalizedString("%@ (open for reading)");
            new QTreeWidgetItem(
                session, {shown(stringWithFormat(format, file.path)), QString(), timeText(file.since)});
        }
    }
    list_->expandAll();
    list_->resizeColumnToContents(1);
    list_->resizeColumnToContents(2);
    constexpr const char* advice =
        "Select a computer or a share to disconnect it.  Programs connect again when they need to.";
    summary_->setText(localized(sessions->empty() ? "Nobody is connected." : advice));
    updateButton();
}

void SessionsDialog::updateButton() {
    const auto* item = list_->currentItem();
    disconnect_->setEnabled(item != nullptr && item->data(0, kindRole).isValid());
}

void SessionsDialog::disconnectSelected() {
    const auto* item = list_->currentItem();
    if (item == nullptr || !item->data(0, kindRole).isValid()) {
        return;
    }
    const auto kind = static_cast<Disconnection>(item->data(0, kindRole).toInt());
    const std::string what = item->data(0, nameRole).toByteArray().toStdString();
    const std::string& question =
        kind == Disconnection::Share
            ? NSLocalizedString("End all connections to the share \"%@\"?  What is not saved may be lost.")
            : NSLocalizedString("End all connections of the computer %@?  What is not saved may be lost.");
    if (NSRunAlertPanel(NSLocalizedString("Disconnect"), question, NSLocalizedString("No"),
                        NSLocalizedString("Yes"), std::nullopt, what) != NSAlertAlternateReturn) {
        return;
    }
    if (!server_.disconnect(kind, what)) {
        summary_->setText(localized("It was not disconnected; the main window says why."));
        return;
    }
    fill();
}

} // namespace frontend
