#pragma once

#include "platform/foundation/Services.h"
#include "platform/posix/Status.h"
#include "review/HistoryEntry.h"
#include "review/Undo.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace review {

class Recorder;

/// What actions have changed, and how it is taken back. One for a host, for which it stands before the
/// authority; all but attach() needs that host to be the current one. Main thread only.
class History {
  public:
    /// Puts a recorder before the authority of `services`, which a host is made of afterwards. Where they
    /// name no file for the history, none is kept.
    explicit History(platform::Services& services);

    /// All entries, the newest first, with all that they hold.
    [[nodiscard]] platform::Result<std::vector<HistoryEntry>> entries() const;

    /// What this program has added since this was asked last; of several entries the newest. Other programs
    /// may have added later ones.
    [[nodiscard]] std::optional<HistoryEntry> takeAdded() const;

    /// Lets no further run of the action that is under way begin: the right to make it is refused, and nobody
    /// is asked. The one that the presenter is being told of is `madeStill` or not. What is done stays.
    /// Nothing where no history is kept.
    void stopAction(bool madeStill) const;

    /// The title of the change that an undo takes back next; empty where there is none, or the history cannot
    /// be read. Waits for no directory: a menu shows it.
    [[nodiscard]] std::string titleOfNextUndo() const;

    /// What taking back entry `number` would do; none: the newest that is not taken back. Nothing changes.
    /// Fails when there is no such entry, or the history cannot be read.
    [[nodiscard]] platform::Result<UndoPlan> describeUndo(std::optional<std::int64_t> number) const;

    /// Takes back what the plan says, as a part of the event that is under way (NSApp().dispatch). Fails,
    /// with nothing changed, when the plan is refused or things have changed since it was made; and when a
    /// run failed. The caller then reads all that is shown again (Reviewer::rereadEverything).
    [[nodiscard]] platform::Status undo(const UndoPlan& plan) const;

  private:
    std::shared_ptr<Recorder> recorder_; ///< null: no history is kept
};

/// Lists in an alert what will not be restored exactly. True unless the plan is refused; the alert then says
/// why.
[[nodiscard]] bool announceUndo(const UndoPlan& plan);
/// Says that taking back has stopped on its way; the failed run was logged.
void showUndoFailed(const UndoPlan& plan);

} // namespace review
