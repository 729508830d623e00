#include "frontends/qt/WindowComputer.h"

#include "platform/foundation/NSBundle.h"

#include <QLabel>
#include <QPushButton>
#include <QStatusBar>
#include <QTimer>

namespace {

constexpr int milliseconds = 3000; // a server starts and ends by itself
constexpr int afpPage = 3;

QString localized(const char* key) {
    return shown(NSLocalizedString(key));
}

} // namespace

WindowComputer::WindowComputer(const platform::Computer& computer, NSTabView& tabs, QMainWindow& window,
                               RefreshQueue& queue)
    : QObject(&window), computer_(computer), tabs_(tabs), queue_(queue), state_(new QLabel),
      start_(new QPushButton(localized("Start SMB Server"))),
      atBoot_(new QPushButton(localized("Start at Boot"))) {
    state_->setObjectName("serverState");
    state_->setTextFormat(Qt::PlainText);
    start_->setObjectName("startServer");
    atBoot_->setObjectName("startServerAtBoot");
    using Change = review::Reviewer::ServerChange;
    connect(start_, &QPushButton::clicked, this, [this] { control(Change::Start); });
    connect(atBoot_, &QPushButton::clicked, this, [this] { control(Change::StartAtBoot); });
    QStatusBar* bar = window.statusBar();
    bar->addWidget(state_, 1);
    bar->addPermanentWidget(start_);
    bar->addPermanentWidget(atBoot_);
    new Binding(state_, queue, tabs.changed, [this] { showState(); });
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, [this] { showState(); });
    timer->start(milliseconds);
    showState();
}

void WindowComputer::showState() {
    const platform::ServerLine line = computer_.smbServer();
    const std::string missing = computer_.whatIsMissing();
    const std::string text =
        tabs_.indexOfSelectedTabViewItem() == afpPage ? computer_.afpServerLine() : line.text;
    state_->setText(shown(text + (text.empty() || missing.empty() ? "" : "  ") + missing));
    state_->setToolTip(state_->text());
    start_->setVisible(line.canBeStarted);
    atBoot_->setVisible(line.canBeStarted);
}

void WindowComputer::control(review::Reviewer::ServerChange change) {
    dispatchUserEvent(queue_, [change] { review::Reviewer::changeServer(change); });
    showState();
}
