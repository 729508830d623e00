#include "frontends/qt/WaitingDialog.h"

#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "review/DirectoryState.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace frontend {

namespace {

constexpr double moment = 0.5; // seconds
constexpr int dialogWidth = 360;
constexpr int eventsMilliseconds = 20;

} // namespace

bool WaitingDialog::keepWaiting(double seconds) {
    if (dialog_ == nullptr && seconds >= moment) {
        if (const std::string holder = review::directoryHolder(); !holder.empty()) {
            show(holder);
        }
    }
    if (dialog_ == nullptr) {
        return true;
    }
    QCoreApplication::processEvents(QEventLoop::AllEvents, eventsMilliseconds);
    return dialog_->isVisible();
}

void WaitingDialog::show(const std::string& holder) {
    QWidget* parent = parent_();
    queue_.hold(true);
    if (parent != nullptr) {
        parent->window()->setUpdatesEnabled(false);
    }
    dialog_ = std::make_unique<QDialog>(parent);
    dialog_->setObjectName("waiting");
    dialog_->setWindowTitle(localized("Waiting"));
    dialog_->setWindowModality(Qt::ApplicationModal);
    auto* layout = new QVBoxLayout(dialog_.get());
    auto* text = new QLabel(shown(stringWithFormat(
        NSLocalizedString("%@ is using the directory.  Brindle goes on when it has ended."), holder)));
    text->setTextFormat(Qt::PlainText);
    text->setWordWrap(true);
    text->setMinimumWidth(dialogWidth);
    layout->addWidget(text);
    auto* buttons = new QDialogButtonBox;
    auto* stop = buttons->addButton(localized("Stop Waiting"), QDialogButtonBox::RejectRole);
    QObject::connect(stop, &QPushButton::clicked, dialog_.get(), &QDialog::reject);
    layout->addWidget(buttons);
    dialog_->show();
}

void WaitingDialog::waitHasEnded() {
    if (dialog_ == nullptr) {
        return;
    }
    if (QWidget* parent = dialog_->parentWidget()) {
        parent->window()->setUpdatesEnabled(true);
    }
    dialog_.reset();
    queue_.hold(false);
}

} // namespace frontend
