#pragma once

#include "platform/foundation/Services.h"
#include "platform/posix/Status.h"
#include "review/HistoryEntry.h"
#include "review/Undo.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace review {

class Recorder;

/// What actions have changed, and undoing it. There is one for a host, whose authority it wraps; everything
/// except the constructor needs that host to be the current one. Main thread only.
class History {
  public:
    /// Wraps the authority of `services` in a recorder; make the host from `services` afterwards. No history
    /// is kept if `services` name no file for it.
    explicit History(platform::Services& services);

    /// All entries with their contents, the newest first.
    [[nodiscard]] platform::Result<std::vector<HistoryEntry>> entries() const;

    /// The newest entry that this program has added since the last call, or none. Other programs may have
    /// added later ones.
    [[nodiscard]] std::optional<HistoryEntry> takeAdded() const;

    /// Why what this program has changed since the last call is not in the history; empty when all of it is.
    [[nodiscard]] std::string takeLoss() const;

    /// Stops the current action: further runs are refused the right, and the user is not asked. `madeStill`
    /// says whether the run that the presenter is being told of is still made. What has been done stays. Does
    /// nothing when no history is kept.
    void stopAction(bool madeStill) const;

    /// The title of the change that would be undone next; empty when there is none, when the newest change
    /// cannot be undone, or when the history cannot be read. Does not wait for the directory, because a menu
    /// shows it.
    [[nodiscard]] std::string titleOfNextUndo() const;

    /// What undoing entry `number` would do; without a number, the newest change that is not undone. Changes
    /// nothing. Fails when there is no such entry or the history cannot be read.
    [[nodiscard]] platform::Result<UndoPlan>
    describeUndo(std::optional<std::int64_t> number, ChangedFile changedFile = ChangedFile::Refused) const;

    /// Carries the plan out as a part of the current event (NSApp().dispatch). Fails without changing
    /// anything when the plan is refused or things have changed since it was made; also fails when a run
    /// failed. In any case the caller then reads again everything that is shown (Reviewer::rereadEverything).
    [[nodiscard]] platform::Status undo(const UndoPlan& plan) const;

  private:
    std::shared_ptr<Recorder> recorder_; ///< null: no history is kept
};

/// Shows an alert if something will not be restored exactly, or if the plan is refused. Returns false when it
/// is refused.
[[nodiscard]] bool announceUndo(const UndoPlan& plan);
/// Says in an alert that the undo, which returned `status`, stopped half way, where the cause has been
/// logged, or that the right was refused.
void showUndoFailed(const UndoPlan& plan, const platform::Status& status);

} // namespace review
