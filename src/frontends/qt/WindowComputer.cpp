#include "frontends/qt/WindowComputer.h"

#include "frontends/qt/Binding.h"
#include "frontends/qt/ElidedLabel.h"
#include "frontends/qt/TableView.h"
#include "frontends/qt/WindowNames.h"
#include "frontends/qt/WindowStatus.h"
#include "platform/foundation/NSBundle.h"

#include <QPushButton>
#include <QStatusBar>
#include <QTimer>

namespace frontend {

namespace {

constexpr int lookInterval = 3000; // milliseconds: a server may start or end at any time
constexpr const char* sharedColumn = "Public Shared";

} // namespace

WindowComputer::WindowComputer(const platform::Computer& computer, NSTabView& tabs, NSTableView& users,
                               QMainWindow& window, RefreshQueue& queue)
    : QObject(&window), computer_(computer), tabs_(tabs), users_(users), window_(window), queue_(queue),
      state_(WindowStatus::addServerState(window)),
      start_(new QPushButton(localizedTitle("Start SMB Server"))),
      atBoot_(new QPushButton(localizedTitle("Start at Boot"))) {
    start_->setObjectName("startServer");
    atBoot_->setObjectName("startServerAtBoot");
    using Change = review::ServerChange;
    connect(start_, &QPushButton::clicked, this, [this] { control(Change::Start); });
    connect(atBoot_, &QPushButton::clicked, this, [this] { control(Change::StartAtBoot); });
    QStatusBar* bar = window.statusBar();
    bar->addPermanentWidget(start_);
    bar->addPermanentWidget(atBoot_);
    new Binding(state_, queue, tabs.changed, [this] { showState(); });
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, [this] { showState(); });
    timer->start(lookInterval);
    showState();
}

void WindowComputer::markUsers() {
    // The page of the users is built when it is first shown.
    auto* table = marked_ ? nullptr : window_.findChild<TableView*>(userTable);
    const NSTableColumn* shared = users_.tableColumnWithIdentifier(sharedColumn);
    if (table == nullptr || shared == nullptr) {
        return;
    }
    marked_ = true;
    table->setRemarks([this, column = *shared](const std::string& user, int row) {
        return users_.objectValue(column, row) == NSLocalizedString("YES") ? computer_.whyNoPublicFolder(user)
                                                                           : std::string();
    });
}

void WindowComputer::showState() {
    markUsers();
    const platform::ServerLine line = computer_.smbServer();
    const std::string missing = computer_.whatIsMissing();
    const std::string text =
        tabs_.indexOfSelectedTabViewItem() == afpPage ? computer_.afpServerLine() : line.text;
    state_->setWhole(shown(text + (text.empty() || missing.empty() ? "" : "  ") + missing));
    start_->setVisible(line.canBeStarted);
    atBoot_->setVisible(line.canBeStarted);
}

void WindowComputer::control(review::ServerChange change) {
    queue_.runUserEvent([change] { review::changeServer(change); });
    showState();
}

} // namespace frontend
