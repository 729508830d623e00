#include "frontends/qt/WindowStatus.h"

#include "frontends/qt/ActivityDialog.h"
#include "frontends/qt/Binding.h"
#include "frontends/qt/ElidedLabel.h"
#include "frontends/qt/Inks.h"
#include "frontends/qt/TableView.h"
#include "frontends/qt/WindowNames.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/Presenter.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"

#include <QApplication>
#include <QClipboard>
#include <QFileInfo>
#include <QMenu>
#include <QPushButton>
#include <QStatusBar>
#include <QUrl>

namespace frontend {

WindowStatus::WindowStatus(Activity& activity, QMainWindow& window, WindowActions& actions,
                           RefreshQueue& queue)
    : QObject(&window), activity_(activity), window_(window), actions_(actions) {
    text_ = new ElidedLabel(true);
    text_->setObjectName("statusText");
    constexpr int inset = 14; // with the bar's own, as far from the edge as the page
    window.statusBar()->setContentsMargins(inset, 0, 0, 0);
    window.statusBar()->addWidget(text_);
    copy_ = addButton("statusCopy", "Copy Address");
    open_ = addButton("statusOpen", "Open");
    undo_ = addButton("statusUndo", "Undo");
    more_ = addButton("statusMore", "Why?");
    connect(copy_, &QPushButton::clicked, this,
            [this] { QApplication::clipboard()->setText(shown(address_)); });
    connect(open_, &QPushButton::clicked, this,
            [this] { platform::Host::current().presenter().openAddress(address_); });
    connect(undo_, &QPushButton::clicked, this, [this] { takeBack_(number_); });
    connect(more_, &QPushButton::clicked, this, [this] { showActivity(); });
    auto* view = window.findChild<TableView*>(shareTable);
    auto* shares = actions.find<NSTableView>(shareTable);
    if (view != nullptr && shares != nullptr) {
        connect(view, &TableView::menuAsked, this,
                [this, shares](QMenu& menu, int row) { fillShareMenu(menu, *shares, row); });
    }
    eventEnded_ = queue.eventEnded.connect([this] { eventEnded(); });
    used_ = actions.used.connect([this](const std::string& operation) { operation_ = operation; });
}

QPushButton* WindowStatus::addButton(const char* name, const char* text) {
    auto* button = new QPushButton(localizedTitle(text));
    button->setObjectName(name);
    button->setAutoDefault(false);
    window_.statusBar()->addWidget(button);
    button->hide();
    return button;
}

void WindowStatus::useHistory(const review::History& history, QMenu& menu,
                              std::function<void(std::int64_t)> takeBack) {
    history_ = &history;
    takeBack_ = std::move(takeBack);
    menu.addSeparator();
    menu.addAction(localizedTitle("Activity…"), this, [this] { showActivity(); })
        ->setObjectName("showActivity");
}

void WindowStatus::useServer(ShareServer server) {
    server_ = std::move(server);
    if (server_.hasFailed) {
        show(shown(server_.state), true);
    } else if (!server_.state.empty() && serverState_ == nullptr) {
        serverState_ = addServerState(window_);
        serverState_->setWhole(shown(server_.state));
    }
}

ElidedLabel* WindowStatus::addServerState(const QMainWindow& window) {
    auto* state = new ElidedLabel;
    state->setObjectName("serverState");
    state->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    window.statusBar()->addPermanentWidget(state, 1); // a layout serves an item that stretches last
    return state;
}

void WindowStatus::actionBegins() {
    const auto* field = actions_.find<NSTextField>("shareName");
    edited_ = field == nullptr ? std::string() : field->stringValue();
}

void WindowStatus::show(const QString& text, bool isFailure) {
    for (QPushButton* button : {copy_, open_, undo_}) {
        button->hide();
    }
    more_->setVisible(isFailure && !activity_.entries().empty());
    text_->setWhole(text);
    useInk(*text_, isFailure ? std::optional(Ink::Warning) : std::nullopt);
}

void WindowStatus::lookAtServer() {
    if (serverState_ == nullptr || !server_.runs || server_.runs()) {
        return;
    }
    server_ = {
        "",
        NSLocalizedString("The SMB server has ended: start Brindle with --serve again to reach the shares."),
        true};
    serverState_->setWhole(shown(server_.state));
    useInk(*serverState_, Ink::Warning);
    if (!copy_->isHidden()) { // the line names an address that nobody answers any more
        static_cast<void>(showShare(edited_));
    }
}

void WindowStatus::eventEnded() {
    lookAtServer(); // the window's activation is an event, too
    const auto added = history_ == nullptr ? std::nullopt : history_->takeAdded();
    if (activity_.runsOfEvent() > 0 || activity_.isRefused() || !activity_.failureOfEvent().empty()) {
        showOutcome(added);
    }
    if (activity_.runsOfEvent() > 0 && !activity_.isRefused() && activity_.failureOfEvent().empty() &&
        activity_.stopOfEvent().empty()) {
        saved.emit(operation_);
    }
    activity_.endEvent();
    operation_.clear();
    if (dialog_ != nullptr && dialog_->isVisible()) {
        dialog_->reload();
    }
}

void WindowStatus::showOutcome(const std::optional<review::HistoryEntry>& added) {
    const bool isNew = added.has_value();
    number_ = isNew ? added->number : 0;
    const std::string& failure = activity_.failureOfEvent();
    if (const std::string& stop = activity_.stopOfEvent(); !stop.empty()) {
        show(shown(stop));
    } else if (!failure.empty()) {
        show(shown(stringWithFormat(NSLocalizedString(isNew ? "Not everything was done: %@" : "Failed: %@"),
                                    failure)),
             true);
    } else if (activity_.isRefused()) {
        show(shown((isNew ? added->title + ".  " : "") + activity_.refusal()));
    } else if (operation_ != "createShare:" || !isNew || !showShare(edited_)) {
        show(isNew ? shown(added->title) + QLatin1Char('.') : localized("Done."));
    }
    undo_->setVisible(isNew && added->canComeBack() && added->undoes == 0 && takeBack_ != nullptr);
}

bool WindowStatus::showShare(const std::string& name) {
    // The table marks every folder that is offered, perhaps under another name, where this address would not
    // work.
    if (!hasSection_ || !hasSection_(name)) {
        return false;
    }
    if (server_.address.empty() || (server_.runs && !server_.runs())) {
        show(shown(stringWithFormat(NSLocalizedString("%@ will be shared over SMB as soon as a server runs."),
                                    name)));
        return true;
    }
    address_ = smbAddressOf(server_, name);
    show(shown(stringWithFormat(NSLocalizedString("%@ is shared at %@."), name, address_)));
    copy_->show();
    open_->show();
    return true;
}

void WindowStatus::fillShareMenu(QMenu& menu, NSTableView& shares, int row) {
    const QString folder = shown(valueOf(shares, "DirectoryPath", row));
    const QString address = shown(addressOf(server_, shares, row, hasSection_));
    QAction* open = menu.addAction(localizedTitle("Open Folder"), this, [folder] {
        platform::Host::current().presenter().openAddress(
            QUrl::fromLocalFile(folder).toString(QUrl::FullyEncoded).toStdString());
    });
    open->setEnabled(QFileInfo(folder).isDir());
    QAction* copy = menu.addAction(localizedTitle("Copy Address"), this,
                                   [address] { QApplication::clipboard()->setText(address); });
    copy->setEnabled(!address.isEmpty());
}

void WindowStatus::showActivity() {
    if (dialog_ == nullptr) {
        dialog_ = new ActivityDialog(activity_, &window_);
    }
    dialog_->reload();
    dialog_->show();
    dialog_->raise();
    dialog_->activateWindow();
}

} // namespace frontend
