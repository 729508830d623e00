#pragma once

#include "platform/foundation/Services.h"

#include <QDateTime>
#include <QString>

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>

/// One thing that happened: a tool run, a line of the log, or a beep that nothing explains.
struct ActivityEntry {
    enum class Kind { Run, Log, Beep };

    QDateTime time;
    Kind kind = Kind::Log;
    std::string text;   ///< the run as a person would type it, a password as "********"; or the line
    std::string output; ///< what the run's tool wrote
    bool hasFailed = false;
    bool hasBeeped = false; ///< it is what a beep was about
};

/// Keeps what happened since the window opened, the last twenty thousand entries of it, and what of it
/// belongs to the user's event that is under way. Main thread only.
class Activity {
  public:
    void toolWillRun(const std::string& tool, std::span<const std::string> arguments);
    void toolDidWrite(std::string_view output);
    void logged(std::string_view text);
    void beeped();

    /// A field's formatter has refused what was typed.
    void editWasRefused() { isEditRefused_ = true; }

    /// The user was asked for permission, and refused.
    void permissionWasRefused() { isRefused_ = true; }

    /// The user has stopped the action that is under way; `text` says how far it has come.
    void wasStopped(std::string text) { stop_ = std::move(text); }

    /// What the event still tries is not done any more, and so not worth an entry.
    void leaveRestOut() { leavesOut_ = true; }

    /// As given to wasStopped in this event; empty where nothing was stopped.
    [[nodiscard]] const std::string& stopOfEvent() const { return stop_; }

    /// The event under way has ended; what follows belongs to the next one.
    void endEvent();

    [[nodiscard]] const std::deque<ActivityEntry>& entries() const { return entries_; }

    /// How many were kept before the first of them, and are no more.
    [[nodiscard]] std::size_t droppedEntries() const { return dropped_; }

    /// Those that could change something.
    [[nodiscard]] int runsOfEvent() const { return runs_; }

    [[nodiscard]] bool isRefused() const { return isRefused_; }

    /// Why the first thing that failed in this event did: the tool's own sentence, or the log's; empty where
    /// nothing has failed.
    [[nodiscard]] const std::string& failureOfEvent() const { return failure_; }

    /// The same of what has failed since this was asked last: an alert's reason is not the one of the alert
    /// before.
    [[nodiscard]] std::string takeReason() { return std::exchange(reason_, std::string()); }

    /// All entries as lines of text.
    [[nodiscard]] QString text() const;

  private:
    void add(ActivityEntry::Kind kind, std::string text);
    void noteFailure(const std::string& why);

    std::deque<ActivityEntry> entries_;
    std::size_t dropped_ = 0;
    int entriesOfEvent_ = 0;
    int runs_ = 0;
    bool isRefused_ = false;
    bool isEditRefused_ = false;
    bool leavesOut_ = false;
    bool readsOutput_ = false; ///< what the last run writes is what it was made for
    bool beepWaits_ = false;   ///< for the line that explains it
    std::string failure_;
    std::string reason_;
    std::string stop_;
};

/// What the outcome of an entry is called: "done", "failed", or nothing for a line of the log.
[[nodiscard]] QString outcomeText(const ActivityEntry& entry);

/// A log that has an activity keep each line, too.
class ActivityLog : public platform::Log {
  public:
    /// `activity` outlives this, or is taken away first.
    ActivityLog(std::shared_ptr<platform::Log> log, Activity& activity)
        : log_(std::move(log)), activity_(&activity) {}

    void write(std::string_view text) override;

    void takeActivityAway() { activity_ = nullptr; }

  private:
    std::shared_ptr<platform::Log> log_;
    Activity* activity_;
};
