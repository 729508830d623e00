#include "frontends/qt/RunProgress.h"

#include "frontends/qt/Binding.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr std::size_t fewRuns = 10;
constexpr int moment = 400; // milliseconds
constexpr int betweenLooks = 50;
constexpr int dialogWidth = 360;

std::string numberText(std::size_t number) {
    return QLocale().toString(static_cast<qulonglong>(number)).toStdString();
}

/// The account or record that the run is about; the tool's name for the others.
std::string subjectOf(const std::string& tool, std::span<const std::string> arguments) {
    constexpr std::size_t path = 2;
    const std::string& named = arguments.size() > path ? arguments[path] : tool;
    return named.substr(named.rfind('/') + 1);
}

} // namespace

RunProgress::RunProgress(std::function<QWidget*()> parent, Activity& activity, RefreshQueue& queue)
    : parent_(std::move(parent)), activity_(activity), queue_(queue) {
    eventEnded_ = queue.eventEnded.connect([this] { end(); });
}

void RunProgress::begin(std::size_t runs) {
    runs_ = runs > fewRuns ? runs : 0;
    done_ = 0;
    sinceBegin_.start();
}

void RunProgress::toolWillRun(const std::string& tool, std::span<const std::string> arguments) {
    ++done_;
    if (runs_ == 0 || sinceBegin_.elapsed() < moment ||
        (dialog_ != nullptr && sinceShown_.elapsed() < betweenLooks)) {
        return;
    }
    if (dialog_ == nullptr) {
        show();
    }
    queue_.hold(true); // the action stands in its middle, and so do the lists
    const std::size_t under = std::min(done_, runs_);
    text_->setText(
        shown(stringWithFormat(NSLocalizedString("%@ of %@"), numberText(under), numberText(runs_))));
    subject_->setText(shown(subjectOf(tool, arguments)));
    bar_->setValue(static_cast<int>(under));
    QCoreApplication::processEvents();
    sinceShown_.start();
}

void RunProgress::show() {
    dialog_ =
        std::make_unique<QDialog>(parent_(), Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
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
    if (stop_) {
        auto* buttons = new QDialogButtonBox;
        auto* button = buttons->addButton(localizedTitle("Stop"), QDialogButtonBox::RejectRole);
        QObject::connect(button, &QPushButton::clicked, dialog_.get(), [this] { stop(); });
        QObject::connect(dialog_.get(), &QDialog::rejected, dialog_.get(), [this] { stop(); });
        layout->addWidget(buttons);
    }
    dialog_->show();
}

void RunProgress::stop() {
    if (runs_ == 0) {
        return; // once is enough
    }
    // The run that is announced is made.
    activity_.wasStopped(stringWithFormat(NSLocalizedString("Stopped: %@ of %@ steps are done."),
                                          numberText(std::min(done_, runs_)), numberText(runs_)));
    runs_ = 0;
    stop_();
}

void RunProgress::end() {
    runs_ = 0;
    if (dialog_ != nullptr) {
        dialog_.reset();
        queue_.hold(false);
        queue_.flush();
    }
}
