#pragma once

#include "platform/posix/Status.h"
#include "review/HistoryEntry.h"
#include "review/Plan.h"

#include <string>
#include <vector>

namespace review {

/// What taking an entry back would do.
struct UndoPlan {
    HistoryEntry entry;
    std::string title;    ///< of the entry that it would leave itself
    std::string question; ///< whether it is meant, with the entry's title
    std::string refusal;  ///< why it cannot be taken back now, in the user's language; empty: it can
    std::vector<std::string> losses; ///< what does not come back as it was, a sentence each
    /// The runs, in their order; those that hang servers up follow.
    std::vector<PlannedRun> records;
    std::vector<FileChange> files; ///< `before` is to take the place of what is there
    std::vector<PlannedRun> folders;
    bool hangsUpAFP = false;
    bool hangsUpSMB = false;
};

/// Works out how `entry` is taken back, as things are now. `all` are the entries of the history, the newest
/// first: a later one that builds on this is named in the refusal. What is already as it was before is left
/// alone, so that an undo that was cut short can be done again.
[[nodiscard]] UndoPlan planUndo(const HistoryEntry& entry, const std::vector<HistoryEntry>& all);

/// Carries a plan out, run by run, as a part of the action that is under way: the directory first, in one
/// transaction, then the settings files, the folders, and the servers. Stops at the first failed run, which
/// has beeped and was logged, and when the directory's records are not as they were before once the
/// transaction is over.
[[nodiscard]] platform::Status carryOut(const UndoPlan& plan);

} // namespace review
