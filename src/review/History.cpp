#include "review/History.h"

#include "platform/appkit/NSAlert.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/WritersTurn.h"
#include "privileged/NiutilTask.h"
#include "review/Recorder.h"

#include <algorithm>

namespace review {

using platform::Result;
using platform::Status;

History::History(platform::Services& services) {
    if (!services.historyFile.empty() && services.authority) {
        recorder_ = std::make_shared<Recorder>(services);
        services.authority = recorder_;
        services.pendingWrites = recorder_;
    }
}

namespace {

/// Whether undo without a number means this one. An undo that found everything as before has changed nothing,
/// and one that has failed is to be repeated: what it was to undo is next.
bool isNextToUndo(const HistoryEntry& entry) {
    const bool mayBeNext =
        entry.undoes == 0 || (!entry.hasFailed && (entry.isDamaged || entry.canComeBack()));
    return !entry.isUndone && mayBeNext;
}

/// Whether an undo of that entry has failed before.
bool hasBegunBefore(const Recorder& recorder, std::int64_t number) {
    bool hasBegun = false;
    // If the history cannot be read, the undo cannot be recorded either.
    static_cast<void>(recorder.store().visit([&](HistoryEntry&& entry) {
        hasBegun = hasBegun || (entry.undoes == number && entry.hasFailed);
        return !hasBegun && entry.number > number;
    }));
    return hasBegun;
}

void showAlert(const std::string& title, const std::string& message) {
    NSRunAlertPanel(title, "%@", NSLocalizedString("OK"), std::nullopt, std::nullopt, message);
}

} // namespace

bool announceUndo(const UndoPlan& plan) {
    if (!plan.refusal.empty()) {
        showAlert(NSLocalizedString("Not Possible"), plan.refusal);
        return false;
    }
    std::string message;
    for (const std::string& loss : plan.losses) {
        message += (message.empty() ? "" : "\n") + loss;
    }
    if (!message.empty()) {
        showAlert(NSLocalizedString("Not Everything Comes Back"), message);
    }
    return true;
}

void showUndoFailed(const UndoPlan& plan, const Status& status) {
    // A file that could not be written has failed without anybody being asked.
    const bool wasRefused = !NiutilTask::sharedInstance().isAuthenticated() && status.systemError() == 0;
    const std::string why =
        !wasRefused ? NSLocalizedString("Taking back %@ (%@) stopped before the end.  The rest can be taken "
                                        "back once the cause named in the log has been removed.")
                    : NSLocalizedString(
                          "Taking back %@ (%@) needs an administrator's permission, and nobody gave it.");
    showAlert(NSLocalizedString("Not Taken Back"),
              stringWithFormat(why, std::to_string(plan.entry.number), plan.entry.title));
}

Result<std::vector<HistoryEntry>> History::entries() const {
    return recorder_ ? recorder_->store().entries() : std::vector<HistoryEntry>();
}

std::optional<HistoryEntry> History::takeAdded() const {
    return recorder_ ? recorder_->takeAdded() : std::nullopt;
}

std::string History::takeLoss() const {
    return recorder_ ? recorder_->takeLoss() : std::string();
}

void History::stopAction(bool madeStill) const {
    if (recorder_) {
        recorder_->stopAction(madeStill);
    }
}

std::string History::titleOfNextUndo() const {
    std::string title;
    if (recorder_) {
        // A history that cannot be read offers no undo; trying to undo says why.
        static_cast<void>(recorder_->store().visit([&title](HistoryEntry&& entry) {
            const bool isNext = isNextToUndo(entry);
            title = isNext && entry.canComeBack() ? std::move(entry.title) : std::string();
            return !isNext;
        }));
    }
    return title;
}

Result<UndoPlan> History::describeUndo(std::optional<std::int64_t> number, ChangedFile changedFile) const {
    const auto all = entries();
    if (!all.isOk()) {
        return all.status();
    }
    const auto found = std::ranges::find_if(*all, [&](const HistoryEntry& entry) {
        return number ? entry.number == *number : isNextToUndo(entry);
    });
    if (found == all->end()) {
        return Status::failure(NSLocalizedString("cannot take back"), {},
                               number ? stringWithFormat(NSLocalizedString("the history has no change %@"),
                                                         std::to_string(*number))
                                      : NSLocalizedString("there is no change to take back"));
    }
    return planUndo(*found, *all, changedFile);
}

Status History::undo(const UndoPlan& plan) const {
    if (Status status = platform::Host::current().sharedInstance<platform::WritersTurn>().take(
            platform::WritersTurn::actionSeconds);
        !status.isOk()) {
        return status;
    }
    const auto now = describeUndo(plan.entry.number, plan.changedFile);
    if (!now.isOk()) {
        return now.status();
    }
    if (!now->refusal.empty()) {
        return Status::failure(NSLocalizedString("cannot take back"), plan.entry.title, now->refusal);
    }
    recorder_->beginUndo(now->entry.number, now->title);
    Status status = carryOut(*now);
    if (status.isOk()) {
        recorder_->endUndo();
        if (hasBegunBefore(*recorder_, now->entry.number)) {
            recorder_->completeUndo(now->entry);
        }
    }
    return status;
}

} // namespace review
