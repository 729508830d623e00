#include "frontends/qt/QtPresenter.h"

#include "frontends/qt/Dialogs.h"
#include "frontends/qt/FieldProblems.h"
#include "frontends/qt/LineEdit.h"
#include "frontends/qt/NodeAttributes.h"
#include "frontends/qt/Question.h"
#include "frontends/qt/ReadingOrder.h"
#include "frontends/qt/ReviewDialog.h"
#include "frontends/qt/TabView.h"
#include "frontends/qt/TableView.h"
#include "frontends/qt/WaitingDialog.h"
#include "frontends/qt/WindowAccounts.h"
#include "frontends/qt/WindowComputer.h"
#include "frontends/qt/WindowDrop.h"
#include "frontends/qt/WindowHistory.h"
#include "frontends/qt/WindowInquiries.h"
#include "frontends/qt/WindowNames.h"
#include "frontends/qt/WindowPages.h"
#include "frontends/qt/WindowPlace.h"
#include "frontends/qt/WindowReview.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSLog.h"

#include <QApplication>
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QMenu>
#include <QThread>
#include <QUrl>
#include <QWindow>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace frontend {

using platform::AlertAnswer;
using platform::Interface;
using platform::InterfaceNode;

namespace {

/// An address without a scheme names a file of Brindle's resources.
QUrl urlOf(const std::string& address) {
    const QUrl url(shown(address));
    return url.isRelative()
               ? QUrl::fromLocalFile(shown(NSBundle::mainBundle().resourcePath() + "/" + address))
               : url;
}

/// Waits until the window has the place that the desktop gives it: a question that comes before would stand
/// where the window is not.
void waitForPlace(const QWidget* window) {
    constexpr int patience = 500; // milliseconds, for a desktop that does not show it
    const QWindow* shownWindow = window == nullptr ? nullptr : window->windowHandle();
    QElapsedTimer waited;
    waited.start();
    while (shownWindow != nullptr && shownWindow->isVisible() && !shownWindow->isExposed() &&
           !waited.hasExpired(patience)) {
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        QThread::msleep(5);
    }
}

} // namespace

QtPresenter::QtPresenter(QtFrontend::Manner manner)
    : manner_(manner), queue_(std::make_unique<RefreshQueue>()), timers_(std::make_unique<FrameTimers>()) {
    if (manner == QtFrontend::Manner::Interactive) {
        patience_ = std::make_shared<WaitingDialog>([this] { return parentForDialogs(); }, *queue_);
    }
}

QtPresenter::~QtPresenter() {
    closeAll();
}

void QtPresenter::closeAll() {
    if (platform::Host* host = platform::Host::currentIfAny(); host != nullptr && patience_ != nullptr) {
        host->setPatience(nullptr);
    }
    leaveLog();
    status_ = nullptr;
    progress_.reset();
    timers_.reset();
    while (!views_.empty()) {
        views_.pop_back();
    }
    edits_.reset();
    actions_.clear();
    mainWidget_ = nullptr;
    review_ = nullptr;
    inquiries_ = nullptr;
    interfaces_.clear();
    queue_.reset();
}

QWidget* QtPresenter::parentForDialogs() const {
    QWidget* active = QApplication::activeWindow();
    return active != nullptr ? active : mainWidget_;
}

AlertAnswer QtPresenter::runAlert(const platform::Alert& alert) {
    if (asks() && reviewer_ != nullptr && review::Reviewer::isMigrationQuestion(alert)) {
        return askAboutMigration(alert);
    }
    if (!asks()) {
        return harmlessAnswer(alert);
    }
    if (!activity_.stopOfEvent().empty() && !alert.alternateButton) {
        return harmlessAnswer(alert); // the alert is about what the user has stopped
    }
    platform::Alert shownAlert = alert;
    // "Please try again" alone does not help: add the tool's message, or the user's refusal, as the reason.
    if (!alert.alternateButton && !isInformation(alert)) {
        const std::string failure = activity_.takeReason();
        if (const std::string why = failure.empty() ? activity_.refusal() : failure; !why.empty()) {
            shownAlert.message += "\n\n" + why;
        }
    }
    const Question question(progress_);
    if (!std::exchange(isPlaced_, true)) {
        waitForPlace(parentForDialogs());
    }
    return askAlert(shownAlert, parentForDialogs());
}

void QtPresenter::watchLog() {
    platform::Host& host = platform::Host::current();
    log_ = host.services().log;
    activityLog_ = std::make_shared<ActivityLog>(log_, activity_);
    host.setLog(activityLog_);
}

void QtPresenter::leaveLog() {
    if (!activityLog_) {
        return;
    }
    activityLog_->takeActivityAway();
    if (platform::Host* host = platform::Host::currentIfAny();
        host != nullptr && host->services().log == activityLog_) {
        host->setLog(log_);
    }
    activityLog_.reset();
    log_.reset();
}

AlertAnswer QtPresenter::askAboutMigration(const platform::Alert& alert) const {
    const review::Plan plan = reviewer_->planMigration();
    if (!plan.failure.empty()) {
        return askAlert(alert, parentForDialogs());
    }
    if (!plan.blocks.empty()) { // it would delete records that it cannot make again
        showPlan(plan, parentForDialogs());
        return AlertAnswer::Alternate;
    }
    const PlanQuestion question{alert.title, alert.message, alert.defaultButton,
                                alert.alternateButton.value_or("")};
    if (!askAboutPlan(plan, parentForDialogs(), question)) {
        return AlertAnswer::Alternate;
    }
    beginProgress(plan.operation, plan.runs.size());
    return AlertAnswer::Default;
}

void QtPresenter::beginProgress(const std::string& operation, std::size_t runs) const {
    if (progress_ && asks()) {
        progress_->begin(runs, review::stopsOf(operation));
    }
}

std::optional<std::string> QtPresenter::runOpenPanel(const platform::OpenPanelRequest& request) {
    if (panelAnswer_) {
        return panelAnswer_;
    }
    const Question question(progress_);
    return asks() ? askPath(request, parentForDialogs()) : std::nullopt;
}

std::optional<platform::AdministratorAnswer>
QtPresenter::runAdministratorDialog(const platform::AdministratorRequest& request) {
    // An action with many runs asks before each of them. Done in part it would be worse than not at all.
    if (!asks() || (refusedIn_ > 0 && refusedIn_ == queue_->userEvent())) {
        return std::nullopt;
    }
    const Question question(progress_);
    auto answer = askAdministrator(request, parentForDialogs());
    if (!answer) {
        refusedIn_ = queue_->userEvent();
        activity_.permissionWasRefused();
    }
    return answer;
}

void QtPresenter::beep() {
    const bool isForPerson = activity_.beeped();
    if (queue_ && !queue_->isInEvent()) { // a refused key
        activity_.endEvent();
    }
    if (isForPerson && asks() && activity_.stopOfEvent().empty()) { // no beep for what the user has stopped
        QApplication::beep();
    }
}

void QtPresenter::openAddress(const std::string& address) {
    if (asks() && !QDesktopServices::openUrl(urlOf(address))) {
        NSLog("The address %@ could not be opened: no application on this computer opens it.", address);
    }
}

platform::TimerId QtPresenter::startTimer(double interval, std::function<void()> fire) {
    if (interval > 0) {
        throw std::logic_error("only timers without an interval are served: nothing uses others");
    }
    return timers_ ? timers_->start(std::move(fire)) : 0;
}

void QtPresenter::stopTimer(platform::TimerId timer) {
    if (timers_) {
        timers_->stop(timer);
    }
}

void QtPresenter::interfaceDidLoad(Interface& interface) {
    if (!queue_) {
        return;
    }
    interfaces_.push_back(&interface);
    const InterfaceNode* menuBar = nullptr;
    for (const auto& node : interface.root().children) {
        menuBar = node->kind == platform::InterfaceKind::MenuBar ? node.get() : menuBar;
    }
    const bool animated =
        manner_ == QtFrontend::Manner::Interactive && QGuiApplication::platformName() != "offscreen";
    actions_.push_back(std::make_unique<WindowActions>(interface, *queue_));
    actions_.back()->setPanelAnswer(
        [this](std::optional<std::string> path) { panelAnswer_ = std::move(path); });
    actions_.back()->setBegun([this](const std::string& field) {
        auto* edit = mainWidget_ == nullptr ? nullptr : mainWidget_->findChild<LineEdit*>(shown(field));
        if (edit != nullptr && edit->isVisible()) {
            edit->setFocus();
            edit->selectAll();
        } else if (const auto* view = mainWidget_ == nullptr ? nullptr : mainWidget_->findChild<TabView*>()) {
            focusBeginningOf(view->currentPage()); // the editor has closed
        }
    });
    actions_.back()->setRefused([this, &interface](const std::string& field, const std::string& why) {
        showPageOf(field, interface, *queue_);
        if (auto* edit = mainWidget_ == nullptr ? nullptr : mainWidget_->findChild<LineEdit*>(shown(field))) {
            edit->setProblem(shown(why));
            edit->setFocus();
            edit->selectAll();
        }
    });
    for (const auto& node : interface.root().children) {
        auto* window = modelOf<NSWindow>(*node);
        if (window == nullptr) {
            continue;
        }
        views_.push_back(
            std::make_unique<WindowView>(*node, menuBar, mainWidget_, animated, *actions_.back(), *queue_));
        // For pictures a window is laid out and drawn as usual, but not shown on the user's screen.
        views_.back()->widget().setAttribute(Qt::WA_DontShowOnScreen, manner_ == QtFrontend::Manner::Silent);
        if (window->kind() == NSWindowKind::Main && mainWidget_ == nullptr) {
            mainWidget_ = &views_.back()->widget();
            auto* main = qobject_cast<QMainWindow*>(mainWidget_);
            auto* tabs = actions_.back()->find<NSTabView>(pagesOfWindow);
            if (main != nullptr && manner_ == QtFrontend::Manner::Interactive) {
                new WindowPlace(*window, tabs, *main); // the window's child
            }
            if (main != nullptr && menuBar != nullptr && tabs != nullptr) {
                new WindowPages(*tabs, *main, *actions_.back(), *queue_); // the same
            }
        }
    }
}

void QtPresenter::useReviewer(review::Reviewer& reviewer) {
    reviewer_ = &reviewer;
    platform::Host::current().setPatience(patience_);
    if (auto* window = qobject_cast<QMainWindow*>(mainWidget_)) {
        edits_ = std::make_unique<UnsavedEdits>(*actions_.front(), *queue_);
        actions_.front()->setMayClose([this] { return edits_->mayBeLost(UnsavedEdits::Pages::All); });
        review_ =
            new WindowReview(reviewer, *edits_, *window, *actions_.front(), *queue_); // the window's child
        progress_ = std::make_unique<RunProgress>([this] { return parentForDialogs(); }, activity_, *queue_);
        review_->setAllowed([this](const review::Plan& plan) {
            status_->actionBegins();
            beginProgress(plan.operation, plan.runs.size());
        });
        watchLog();
        status_ = new WindowStatus(activity_, *window, *actions_.front(), *queue_); // the same
        saved_ =
            status_->saved.connect([this](const std::string& operation) { edits_->noteSaved(operation); });
        status_->setSections([&reviewer](const std::string& name) { return reviewer.hasSection(name); });
        const auto& computer = platform::Host::current().services().computer;
        auto* tabs = actions_.front()->find<NSTabView>(pagesOfWindow);
        auto* users = actions_.front()->find<NSTableView>(userTable);
        if (tabs != nullptr) {
            new WindowDrop(*tabs, *window, *actions_.front()); // the same
        }
        if (computer && tabs != nullptr && users != nullptr) {
            new WindowComputer(*computer, *tabs, *users, *window, *queue_); // the same
            new WindowAccounts(*computer, *actions_.front(), *window);      // the same
        }
    }
}

void QtPresenter::useHistory(const review::History& history) {
    auto* window = qobject_cast<QMainWindow*>(mainWidget_);
    auto* menu = window == nullptr ? nullptr : window->findChild<QMenu*>("changesMenu");
    if (menu != nullptr && reviewer_ != nullptr) {
        auto* changes = new WindowHistory(history, *reviewer_, *edits_, *window, *menu,
                                          *queue_); // the window's child
        changes->setAllowed([this](std::size_t runs) { beginProgress({}, runs); });
        progress_->setStop([&history](bool madeStill) { history.stopAction(madeStill); });
        status_->useHistory(history, *menu,
                            [changes, window](std::int64_t number) { changes->takeBack(number, window); });
    }
}

void QtPresenter::useServer(ShareServer server) {
    if (status_ != nullptr) {
        status_->useServer(std::move(server));
    }
}

void QtPresenter::useDoctor(accesscheck::ExaminedHost host) {
    auto* window = qobject_cast<QMainWindow*>(mainWidget_);
    auto* shares = window == nullptr ? nullptr : actions_.front()->find<NSTableView>(shareTable);
    auto* users = window == nullptr ? nullptr : actions_.front()->find<NSTableView>(userTable);
    if (shares != nullptr && users != nullptr) {
        inquiries_ = new WindowInquiries(std::move(host), *shares, *users, *window, review_, *queue_);
    }
}

void QtPresenter::bringToFront(const std::string& token) {
    if (mainWidget_ == nullptr) {
        return;
    }
    if (!token.empty()) {
        qputenv("XDG_ACTIVATION_TOKEN", QByteArray::fromStdString(token)); // Qt uses it and removes it
    }
    mainWidget_->setWindowState(mainWidget_->windowState() & ~Qt::WindowMinimized);
    mainWidget_->raise();
    QWidget* asking = QApplication::activeModalWidget();
    QWidget& front = asking == nullptr ? *mainWidget_ : *asking;
    front.raise();
    front.activateWindow();
}

WindowView* QtPresenter::viewOf(const NSWindow& window) const {
    const auto found = std::find_if(views_.begin(), views_.end(),
                                    [&window](const auto& view) { return &view->window() == &window; });
    return found == views_.end() ? nullptr : found->get();
}

void QtPresenter::windowVisibilityDidChange(NSWindow& window) {
    if (WindowView* view = viewOf(window)) {
        view->followVisibility();
    }
    if (window.kind() == NSWindowKind::Sheet && !window.isVisible() && mainWidget_ != nullptr) {
        for (TableView* table : mainWidget_->findChildren<TableView*>()) {
            table->reloadLater(); // the selection was not compared with the rows while the sheet was open
        }
    }
}

void QtPresenter::applicationDidTerminate() {
    if (queue_) {
        QCoreApplication::quit();
    }
}

void QtPresenter::editWasRefused(const NSTextField&, const std::string&) {
    activity_.editWasRefused(); // the field's delegate beeps; the error text is for scripts
}

void QtPresenter::toolWillRun(const std::string& tool, std::span<const std::string> arguments) {
    if (progress_ && !progress_->toolWillRun(tool, arguments)) {
        activity_.leaveRestOut();
        return;
    }
    activity_.toolWillRun(tool, arguments);
}

void QtPresenter::toolDidWrite(std::string_view output) {
    activity_.toolDidWrite(output);
}

} // namespace frontend
