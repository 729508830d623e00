#pragma once

#include "platform/foundation/Services.h"
#include "review/RunOutcome.h"

#include <QDateTime>
#include <QString>

#include <cstddef>
#include <deque>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace frontend {

/// Something that happened: a tool run, a line of the log, or a beep without an explanation.
struct ActivityEntry {
    enum class Kind { Run, Log, Beep };

    QDateTime time;
    Kind kind = Kind::Log;
    std::string text; ///< the run as a person would type it, with passwords as "********"; or the log's line
    std::string output; ///< the output of the tool
    bool hasFailed = false;
    bool hasBeeped = false; ///< a beep came with it
};

/// Keeps the last twenty thousand entries since the window opened, and knows which of them belong to the
/// current user event. Main thread only.
class Activity {
  public:
    void toolWillRun(const std::string& tool, std::span<const std::string> arguments);
    void toolDidWrite(std::string_view output);
    void logged(std::string_view text);
    /// Returns false if nobody needs to hear it, because what it is about has not failed.
    [[nodiscard]] bool beeped();

    /// Notes that a field's formatter has refused what was typed.
    void editWasRefused() { isEditRefused_ = true; }

    /// Notes that the user was asked for permission, and refused.
    void permissionWasRefused() { isRefused_ = true; }

    /// Notes that the user has stopped the current action; `text` says how far it got.
    void wasStopped(std::string text) { stop_ = std::move(text); }

    /// Stops making entries until the event ends, because its remaining runs are not carried out.
    void leaveRestOut() { leavesOut_ = true; }

    /// The text given to wasStopped in this event; empty when nothing was stopped.
    [[nodiscard]] const std::string& stopOfEvent() const { return stop_; }

    /// Ends the current event: everything that follows belongs to the next one.
    void endEvent();

    [[nodiscard]] const std::deque<ActivityEntry>& entries() const { return entries_; }

    /// The number of older entries that were dropped.
    [[nodiscard]] std::size_t droppedEntries() const { return dropped_; }

    /// The number of tool runs in this event that could change something.
    [[nodiscard]] int runsOfEvent() const { return runs_; }

    [[nodiscard]] bool isRefused() const { return isRefused_; }

    /// What the refusal has prevented, as a sentence; empty when nothing was refused.
    [[nodiscard]] std::string refusal() const;

    /// Why the first failure in this event happened, in the words of the tool or the log; empty when nothing
    /// failed.
    [[nodiscard]] const std::string& failureOfEvent() const { return failure_; }

    /// Returns the same for failures since the last call, so that an alert does not show the reason for an
    /// earlier one.
    [[nodiscard]] std::string takeReason() { return std::exchange(reason_, std::string()); }

    /// Returns all entries as lines of text.
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
    review::RunOutcome outcome_;
    bool readsOutput_ = false; ///< the last run only reads: its output is not a complaint
    bool beepWaits_ = false;   ///< a beep waits for the line that explains it
    std::string failure_;
    std::string reason_;
    std::string stop_;
};

/// Returns the outcome of an entry in words: "done", "failed", or nothing for a line of the log.
[[nodiscard]] QString outcomeText(const ActivityEntry& entry);

/// A log that also gives each line to an activity.
class ActivityLog : public platform::Log {
  public:
    /// `activity` must outlive this object or be taken away first.
    ActivityLog(std::shared_ptr<platform::Log> log, Activity& activity)
        : log_(std::move(log)), activity_(&activity) {}

    void write(std::string_view text) override;

    void takeActivityAway() { activity_ = nullptr; }

  private:
    std::shared_ptr<platform::Log> log_;
    Activity* activity_;
};

} // namespace frontend
