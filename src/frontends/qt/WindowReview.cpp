#include "frontends/qt/WindowReview.h"

#include "frontends/qt/Binding.h"
#include "frontends/qt/Buttons.h"
#include "frontends/qt/FieldProblems.h"
#include "frontends/qt/Inks.h"
#include "frontends/qt/LineEdit.h"
#include "frontends/qt/Menus.h"
#include "frontends/qt/ReviewDialog.h"
#include "frontends/qt/TableView.h"
#include "frontends/qt/WindowActions.h"
#include "frontends/qt/WindowNames.h"
#include "platform/appkit/NSAlert.h"
#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/NSUserDefaults.h"
#include "review/DirectoryState.h"
#include "review/Operations.h"

#include <QAction>
#include <QBoxLayout>
#include <QEvent>
#include <QFrame>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTimer>

#include <cstdint>

#include <sys/stat.h>

namespace frontend {

namespace {

constexpr const char* reviewAllKey = "BrindleReviewEveryChange";
constexpr const char* saveOperation = "updateSMBProperties:";
constexpr const char* revertOperation = "revertSMBProperties:";
constexpr const char* revertAFPOperation = "refreshAFSProperties:";
constexpr auto pagesOfSMBConf = UnsavedEdits::Pages::OfSMBConf;

/// Returns the box layout that directly contains the widget, and the widget's place in it.
QBoxLayout* layoutAround(QLayout* layout, const QWidget* widget, int* place) {
    for (int index = 0; layout != nullptr && index < layout->count(); ++index) {
        if (layout->itemAt(index)->widget() == widget) {
            *place = index;
            return qobject_cast<QBoxLayout*>(layout);
        }
        if (QBoxLayout* found = layoutAround(layout->itemAt(index)->layout(), widget, place)) {
            return found;
        }
    }
    return nullptr;
}

/// Returns the button nearest to `from` whose action changes something: in the same box, else on the same
/// page, and so on outwards. Among several it is the one that Return presses. Null when there is none.
const NSButton* changingButtonNear(const QWidget* from, const QWidget& window) {
    for (const QWidget* around = from == nullptr ? &window : from; around != nullptr;
         around = around == &window ? nullptr : around->parentWidget()) {
        const NSButton* found = nullptr;
        for (const QAbstractButton* button : around->findChildren<QAbstractButton*>()) {
            const NSButton* model = modelOfButton(*button);
            const bool isCandidate = model != nullptr && button->isVisible() && button->isEnabled() &&
                                     review::isWriting(model->action().operation);
            if (isCandidate && (found == nullptr || model->keyEquivalent() == "\r")) {
                found = model;
            }
        }
        if (found != nullptr) {
            return found;
        }
    }
    return nullptr;
}

/// Returns a text that changes whenever the file does.
std::string stampOf(const SMBConf* conf) {
    struct stat status {};

    if (conf == nullptr ||
        ::stat(platform::Host::current().paths().map(conf->Path()).c_str(), &status) != 0) {
        return {};
    }
    std::string stamp;
    for (const std::int64_t each :
         {static_cast<std::int64_t>(status.st_ino), static_cast<std::int64_t>(status.st_size),
          static_cast<std::int64_t>(status.st_mtim.tv_sec),
          static_cast<std::int64_t>(status.st_mtim.tv_nsec)}) {
        stamp += std::to_string(each) + " ";
    }
    return stamp;
}

} // namespace

WindowReview::WindowReview(review::Reviewer& reviewer, UnsavedEdits& edits, QMainWindow& window,
                           WindowActions& actions, RefreshQueue& queue)
    : QObject(&window), reviewer_(reviewer), edits_(edits), window_(window), actions_(actions),
      queue_(queue) {
    addMenu();
    addNotice();
    addDirectoryNotice();
    eventEnded_ = queue.eventEnded.connect([this] {
        showDirectoryNotice();
        if (notice_ != nullptr && !notice_->isHidden()) {
            showNotice(); // an undo reads everything again
        }
    });
    window.installEventFilter(this);
    reviewer.setBlockedHandler([this](const review::Plan& plan) { showBlocked(plan); });
    reviewer.setQuestion([this](const review::Plan& plan) {
        putBackShare_ = edits_.keep(UnsavedEdits::Pages::ShareEditor);
        putBackSettings_ = edits_.keep(UnsavedEdits::Pages::SMBSettings);
        const bool mayBegin = ask(plan);
        if (mayBegin && allowed_) {
            allowed_(plan);
        }
        return mayBegin;
    });
    reviewer.setServesPerson(true);
    if (auto* shares = actions.find<NSTableView>(shareTable)) {
        remarksShown_ = new Binding(this, queue, shares->reloaded, [this] { showRemarks(); });
    }
    actions.leaveConfirmations(); // the review asks, because every confirmed action writes
    used_ = actions.used.connect([this](const std::string& operation) { actionWasUsed(operation); });
}

WindowReview::~WindowReview() {
    reviewer_.setQuestion(nullptr);
    reviewer_.setBlockedHandler([](const review::Plan&) {}); // without the window nobody can read the message
}

bool WindowReview::reviewsAll() const {
    return NSUserDefaults::standardUserDefaults().integerForKey(reviewAllKey).value_or(0) != 0;
}

bool WindowReview::ask(const review::Plan& plan) {
    const bool isWorthAsking =
        !plan.failure.empty() || !plan.warnings.empty() || (reviewsAll() && !plan.runs.empty());
    const auto confirmation = actions_.takeConfirmation();
    if (!isWorthAsking) {
        return !confirmation || WindowActions::isConfirmed(*confirmation);
    }
    std::optional<PlanQuestion> question;
    if (confirmation) {
        question = PlanQuestion{confirmation->title, confirmation->question, NSLocalizedString("Yes"),
                                NSLocalizedString("No")};
    }
    return askAboutPlan(plan, &window_, question);
}

void WindowReview::showBlocked(const review::Plan& plan) const {
    const review::Remark& block = plan.blocks.front();
    actions_.showInSheet(block.sentence);
    LineEdit* field = nullptr;
    if (NSApp().attachedSheet() == nullptr) {
        showPageOf(block.control, actions_.interface(), queue_);
        field = window_.findChild<LineEdit*>(shown(block.control));
    }
    if (field != nullptr) {
        field->setProblem(shown(block.sentence));
    }
    NSRunAlertPanel(NSLocalizedString("Not Possible"), "%@", NSLocalizedString("OK"), std::nullopt,
                    std::nullopt, block.sentence);
    if (field != nullptr) {
        field->setFocus();
    }
}

void WindowReview::showRemarks() {
    auto* table = window_.findChild<TableView*>(shareTable);
    if (table == nullptr) {
        return;
    }
    remarks_ = reviewer_.otherReadings();
    if (const SMBConf* conf = reviewer_.smbConf(); conf != nullptr && findMore_) {
        remarks_.merge(findMore_(*conf, reviewer_.shares()));
    }
    if (remarks_.empty()) { // the usual case
        table->setRemarks(nullptr);
        return;
    }
    table->setRemarks([this](const std::string& share, int /*row*/) {
        std::string text;
        const auto [begin, end] = remarks_.equal_range(share);
        for (auto each = begin; each != end; ++each) {
            text += (text.empty() ? "" : "\n") + each->second;
        }
        return text;
    });
}

void WindowReview::setShareRemarks(FindRemarks find) {
    findMore_ = std::move(find);
    showRemarks();
}

void WindowReview::addMenu() {
    auto* menu = new QMenu(localizedTitle("Changes"), window_.menuBar());
    menu->setObjectName("changesMenu");
    insertBeforeHelp(*window_.menuBar(), *menu);
    menu->addAction(localizedTitle("What Would This Do?"), this, [this] { planButtonInUse(); })
        ->setObjectName("whatWouldThisDo");
    reviewAll_ = menu->addAction(localizedTitle("Review Every Change"));
    reviewAll_->setObjectName("reviewEveryChange");
    reviewAll_->setCheckable(true);
    reviewAll_->setChecked(reviewsAll());
    connect(reviewAll_, &QAction::toggled, this,
            [](bool isOn) { NSUserDefaults::standardUserDefaults().setInteger(isOn ? 1 : 0, reviewAllKey); });
    menu->addSeparator();
    menu->addAction(localizedTitle("Read smb.conf Again"), this, [this] { reread(); })
        ->setObjectName("readAgain");
}

void WindowReview::planButtonInUse() {
    const QWidget* focus = window_.focusWidget();
    const auto* button = qobject_cast<const QAbstractButton*>(focus);
    const NSButton* model = button == nullptr ? nullptr : modelOfButton(*button);
    if (model == nullptr || !review::isWriting(model->action().operation)) {
        model = changingButtonNear(focus, window_);
    }
    if (model == nullptr) {
        NSRunAlertPanel(
            NSLocalizedString("What Would This Do?"), "%@", NSLocalizedString("OK"), std::nullopt,
            std::nullopt,
            NSLocalizedString(
                "First put the cursor into a form, or on the button whose changes you want to see."));
        return;
    }
    // Which button that is may not be obvious.
    showPlan(reviewer_.planPress(*model), &window_,
             PlanQuestion{NSLocalizedString("What Would This Do?"), model->title(), {}, {}});
}

namespace {

/// Makes a hidden line with a warning and a button.
QFrame* makeNotice(const char* name, const QString& text, QPushButton* button) {
    auto* notice = new QFrame;
    notice->setObjectName(name);
    notice->setFrameShape(QFrame::StyledPanel);
    auto* row = new QHBoxLayout(notice);
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    useInk(*label, Ink::Warning);
    row->addWidget(label, 1);
    button->setAutoDefault(false);
    row->addWidget(button);
    notice->hide();
    return notice;
}

} // namespace

void WindowReview::addDirectoryNotice() {
    // The page comes first in the layout, then the drawer.
    const QLayout* central = window_.centralWidget() == nullptr ? nullptr : window_.centralWidget()->layout();
    const QWidget* page =
        central == nullptr || central->count() == 0 ? nullptr : central->itemAt(0)->widget();
    auto* layout = page == nullptr ? nullptr : qobject_cast<QBoxLayout*>(page->layout());
    if (layout == nullptr) {
        return;
    }
    auto* again = new QPushButton(localizedTitle("Try Again"));
    directoryNotice_ = makeNotice("directoryNotice", {}, again);
    directoryText_ = directoryNotice_->findChild<QLabel*>();
    connect(again, &QPushButton::clicked, this, [this] {
        queue_.runUserEvent([this] {
            if (edits_.mayBeLost(UnsavedEdits::Pages::All)) {
                reviewer_.rereadEverything();
                edits_.forget(UnsavedEdits::Pages::All);
            }
        });
    });
    layout->insertWidget(0, directoryNotice_);
}

void WindowReview::showDirectoryNotice() {
    if (directoryNotice_ == nullptr) {
        return;
    }
    const std::string notice = review::directoryNotice();
    if (!notice.empty()) {
        directoryText_->setText(shown(notice));
    }
    directoryNotice_->setVisible(!notice.empty());
}

void WindowReview::addNotice() {
    auto* table = window_.findChild<QWidget*>(shareTable);
    int place = 0;
    QBoxLayout* layout = table == nullptr || table->parentWidget() == nullptr
                             ? nullptr
                             : layoutAround(table->parentWidget()->layout(), table, &place);
    if (layout == nullptr) {
        return;
    }
    auto* button = new QPushButton(localizedTitle("Read smb.conf Again"));
    notice_ = makeNotice(
        "changedOutside",
        localized("Another program has changed smb.conf since it was read.  What you see here is older."),
        button);
    connect(button, &QPushButton::clicked, this, [this] { reread(); });
    layout->insertWidget(place, notice_);
}

void WindowReview::showNotice() {
    if (queue_.isHeld()) {
        return; // an action is in progress
    }
    stamp_ = stampOf(reviewer_.smbConf());
    // A partly shown page cannot be saved, but the file may have been repaired since.
    const auto* part = actions_.find<NSTextField>("smbPartNotice");
    if (part != nullptr && !part->stringValue().empty() && reviewer_.hasSMBConfChangedOnDisk()) {
        queue_.runUserEvent([this] { rereadBelowEdits(); });
    }
    if (notice_ != nullptr) {
        notice_->setVisible(reviewer_.hasSMBConfChangedOnDisk());
    }
}

void WindowReview::lookAtFile() {
    // Coming back to the window must not take long.
    if (stampOf(reviewer_.smbConf()) != stamp_) {
        showNotice();
    }
}

void WindowReview::reread() {
    queue_.runUserEvent([this] {
        if (edits_.mayBeLost(pagesOfSMBConf)) {
            reviewer_.reread();
            edits_.forget(pagesOfSMBConf);
        }
    });
    showNotice();
}

void WindowReview::rereadBelowEdits() {
    const auto putBack = edits_.keep(pagesOfSMBConf);
    reviewer_.reread();
    putBack();
}

void WindowReview::actionWasUsed(const std::string& operation) {
    const auto putBackShare = std::exchange(putBackShare_, nullptr);
    const auto putBackSettings = std::exchange(putBackSettings_, nullptr);
    // Reverting must show what is on disk now.
    if (operation == revertOperation && reviewer_.hasSMBConfChangedOnDisk()) {
        rereadBelowEdits(); // those in the share editor: the page's own are gone
        showNotice();
    } else if (operation == revertAFPOperation) {
        reviewer_.rereadAFPSettings();
    }
    if (!review::isWriting(operation)) {
        lookAtFile(); // the lists may just have been read again
        return;
    }
    const bool hasFailed = reviewer_.hasUnwrittenSMBConf();
    if (hasFailed) {
        reviewer_.reread();
    }
    // Either this or the action itself may have read smb.conf again.
    if (putBackShare && (hasFailed || operation == saveOperation)) {
        putBackShare();
    }
    if (putBackSettings && (hasFailed || operation != saveOperation)) {
        putBackSettings();
    }
    showNotice();
    if (remarksShown_ != nullptr) {
        remarksShown_->markDirty(); // only once, even if the table is read again
    }
}

bool WindowReview::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::WindowActivate) {
        // After the window has handled the event, and not while an alert is closing.
        QTimer::singleShot(0, this, [this] { lookAtFile(); });
    }
    return QObject::eventFilter(watched, event);
}

} // namespace frontend
