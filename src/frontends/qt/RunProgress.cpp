#include "frontends/qt/RunProgress.h"

#include "frontends/qt/Binding.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/SystemPaths.h"

#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QEvent>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace frontend {

namespace systempath = platform::systempath;

namespace {

constexpr std::size_t fewRuns = 10;
constexpr int moment = 400; // milliseconds
constexpr int betweenLooks = 50;
constexpr int deafFor = 500; // milliseconds: a key may have been meant for the question before
constexpr int dialogWidth = 360;

std::string numberText(std::size_t number) {
    return QLocale().toString(static_cast<qulonglong>(number)).toStdString();
}

/// Returns the path of the object that the run is about; empty for servers.
std::string objectOf(const std::string& tool, std::span<const std::string> arguments) {
    const std::size_t place = tool == systempath::nicl || tool == systempath::dscl ? 2 : 1;
    return tool == systempath::kill || arguments.size() <= place ? std::string() : arguments[place];
}

std::string subjectOf(const std::string& tool, std::span<const std::string> arguments) {
    const std::string object = objectOf(tool, arguments);
    return object.empty() ? NSLocalizedString("Servers") : object.substr(object.rfind('/') + 1);
}

} // namespace

class RunProgress::Dialog : public QDialog {
  public:
    Dialog(QWidget* parent, bool canStop)
        : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint), canStop_(canStop) {
        installEventFilter(this);
        hearNothing();
    }

    void hearNothing() { deaf_.start(); }

    bool eventFilter(QObject* watched, QEvent* event) override {
        const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::Shortcut;
        return (isKey && deaf_.elapsed() < deafFor) || QDialog::eventFilter(watched, event);
    }

    void reject() override {
        if (canStop_) {
            QDialog::reject();
        }
    }

  private:
    QElapsedTimer deaf_; ///< since it began to ignore the keyboard
    bool canStop_;
};

RunProgress::RunProgress(std::function<QWidget*()> parent, Activity& activity, RefreshQueue& queue)
    : parent_(std::move(parent)), activity_(activity), queue_(queue) {
    eventEnded_ = queue.eventEnded.connect([this] { end(); });
}

RunProgress::~RunProgress() = default;

void RunProgress::begin(std::size_t runs, review::Stops stops) {
    runs_ = runs > fewRuns ? runs : 0;
    stops_ = stops;
    done_ = 0;
    object_.clear();
    stopsSoon_ = false;
}

void RunProgress::wasInterrupted() {
    sinceBegin_.start();
    if (dialog_ != nullptr) {
        dialog_->hearNothing();
    }
}

bool RunProgress::toolWillRun(const std::string& tool, std::span<const std::string> arguments) {
    if (isStopped_) {
        return false;
    }
    ++done_;
    if (done_ == 1) {
        sinceBegin_.start();
    }
    std::string object = objectOf(tool, arguments);
    if (std::exchange(object_, object) != object && stopsSoon_) {
        --done_;
        stopNow(false);
        return false;
    }
    if (runs_ == 0 || sinceBegin_.elapsed() < moment ||
        (dialog_ != nullptr && sinceShown_.elapsed() < betweenLooks)) {
        return true;
    }
    if (dialog_ == nullptr) {
        show();
    }
    queue_.hold(true); // the action is unfinished, so the lists are too
    const std::size_t under = std::min(done_, runs_);
    text_->setText(
        shown(stringWithFormat(NSLocalizedString("%@ of %@"), numberText(under), numberText(runs_))));
    subject_->setText(shown(subjectOf(tool, arguments)));
    bar_->setValue(static_cast<int>(under));
    QCoreApplication::processEvents();
    sinceShown_.start();
    return true;
}

void RunProgress::show() {
    const bool canStop = stop_ && stops_ != review::Stops::Nowhere;
    dialog_ = std::make_unique<Dialog>(parent_(), canStop);
    dialog_->setObjectName("progress");
    dialog_->setWindowTitle(localized("Making Changes"));
    dialog_->setWindowModality(Qt::ApplicationModal);
    auto* layout = new QVBoxLayout(dialog_.get());
    text_ = new QLabel;
    text_->setObjectName("progressText");
    text_->setMinimumWidth(dialogWidth);
    bar_ = new QProgressBar;
    bar_->setRange(0, static_cast<int>(runs_));
    bar_->setTextVisible(false);
    bar_->setAccessibleName(localized("Making Changes"));
    subject_ = new QLabel;
    subject_->setTextFormat(Qt::PlainText);
    subject_->setMaximumWidth(dialogWidth);
    layout->addWidget(text_);
    layout->addWidget(bar_);
    layout->addWidget(subject_);
    if (canStop) {
        auto* buttons = new QDialogButtonBox;
        auto* button = buttons->addButton(localizedTitle("Stop"), QDialogButtonBox::RejectRole);
        button->setAutoDefault(false);
        button->installEventFilter(dialog_.get());
        QObject::connect(button, &QPushButton::clicked, dialog_.get(), &QDialog::reject);
        layout->addWidget(buttons);
    }
    QObject::connect(dialog_.get(), &QDialog::rejected, dialog_.get(), [this] { stop(); });
    dialog_->show();
}

void RunProgress::stop() {
    if (runs_ == 0 || stopsSoon_) {
        return; // once is enough
    }
    if (stops_ == review::Stops::AfterRun) {
        stopNow(true);
    } else {
        stopsSoon_ = true;
    }
}

void RunProgress::stopNow(bool madeStill) {
    activity_.wasStopped(stringWithFormat(NSLocalizedString("Stopped: %@ of %@ steps are done."),
                                          numberText(std::min(done_, runs_)), numberText(runs_)));
    runs_ = 0;
    isStopped_ = true;
    stop_(madeStill);
}

void RunProgress::end() {
    runs_ = 0;
    isStopped_ = false;
    stopsSoon_ = false;
    if (dialog_ != nullptr) {
        dialog_.reset();
        queue_.hold(false);
        queue_.flush();
    }
}

} // namespace frontend
