#include "frontends/qt/Activity.h"

#include "frontends/qt/Binding.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/SystemPaths.h"
#include "review/Plan.h"

#include <utility>

namespace frontend {

namespace {

constexpr std::size_t entryLimit = 20000;

std::string trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const auto first = text.find_first_not_of(blanks);
    return first == std::string_view::npos
               ? std::string()
               : std::string(text.substr(first, text.find_last_not_of(blanks) - first + 1));
}

} // namespace

void Activity::add(ActivityEntry::Kind kind, std::string text) {
    entries_.push_back({QDateTime::currentDateTime(), kind, std::move(text), {}, false, false});
    ++entriesOfEvent_;
    if (entries_.size() > entryLimit) {
        entries_.pop_front();
        ++dropped_;
    }
}

void Activity::toolWillRun(const std::string& tool, std::span<const std::string> arguments) {
    add(ActivityEntry::Kind::Run, review::runText(tool, arguments));
    outcome_.begin(tool, arguments);
    readsOutput_ = tool == platform::systempath::smbstatus;
    runs_ += readsOutput_ ? 0 : 1;
}

std::string Activity::refusal() const {
    return !isRefused_
               ? std::string()
               : NSLocalizedString(runs_ == 0
                                       ? "Nothing was changed: the permission was not given."
                                       : "The rest was not done: the permission for it was not given.");
}

void Activity::noteFailure(const std::string& why) {
    for (std::string* kept : {&failure_, &reason_}) {
        if (kept->empty()) {
            *kept = why;
        }
    }
}

void Activity::toolDidWrite(std::string_view output) {
    if (entries_.empty() || entries_.back().kind != ActivityEntry::Kind::Run) {
        return;
    }
    entries_.back().output = trimmed(output);
    if (readsOutput_) {
        entries_.back().hasFailed = output.starts_with("smbstatus: "); // the prefix of its error messages
        return;
    }
    if (outcome_.hasFailed(output)) {
        entries_.back().hasFailed = true;
        noteFailure(entries_.back().output);
    }
}

bool Activity::beeped() {
    if (outcome_.explainsBeep()) {
        return false;
    }
    if (leavesOut_) {
        return true;
    }
    // A run that could not be started writes nothing.
    if (!entries_.empty() && entries_.back().kind == ActivityEntry::Kind::Run) {
        entries_.back().hasFailed = true;
    }
    beepWaits_ = true;
    return true;
}

void Activity::logged(std::string_view text) {
    if (leavesOut_) {
        return;
    }
    add(ActivityEntry::Kind::Log, trimmed(text));
    entries_.back().hasBeeped = std::exchange(beepWaits_, false);
    if (entries_.back().hasBeeped) {
        noteFailure(entries_.back().text);
    }
}

void Activity::endEvent() {
    if (std::exchange(beepWaits_, false)) {
        if (entriesOfEvent_ == 0 || entries_.back().kind != ActivityEntry::Kind::Log) {
            add(ActivityEntry::Kind::Beep,
                NSLocalizedString(isEditRefused_ ? "This field cannot hold what was typed." : "Beep"));
        }
        entries_.back().hasBeeped = true;
    }
    entriesOfEvent_ = 0;
    runs_ = 0;
    isRefused_ = false;
    isEditRefused_ = false;
    leavesOut_ = false;
    failure_.clear();
    reason_.clear();
    stop_.clear();
}

QString outcomeText(const ActivityEntry& entry) {
    return entry.kind != ActivityEntry::Kind::Run ? QString()
           : entry.hasFailed                      ? localized("failed")
                                                  : localized("done");
}

QString Activity::text() const {
    QString all;
    for (const ActivityEntry& entry : entries_) {
        all += entry.time.toString(Qt::ISODate) + QLatin1String("  ") +
               (entry.hasBeeped ? QStringLiteral("♪ ") : QString()) + shown(entry.text);
        if (const QString outcome = outcomeText(entry); !outcome.isEmpty()) {
            all += QLatin1String("  ") + outcome;
        }
        all += QLatin1Char('\n');
        if (!entry.output.empty()) {
            all += QLatin1String("    ") + shown(entry.output) + QLatin1Char('\n');
        }
    }
    return all;
}

void ActivityLog::write(std::string_view text) {
    log_->write(text);
    if (activity_ != nullptr) {
        activity_->logged(text);
    }
}

} // namespace frontend
