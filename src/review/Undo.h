#pragma once

#include "platform/posix/Status.h"
#include "review/HistoryEntry.h"
#include "review/Plan.h"

#include <string>
#include <vector>

namespace review {

/// What is done with smb.conf when it is no longer as the entry left it: the undo is refused, or takes back
/// only the sections that the entry has changed, if they are as it left them.
enum class ChangedFile { Refused, KeepsOtherSections };

/// What undoing an entry would do.
struct UndoPlan {
    ChangedFile changedFile = ChangedFile::Refused;
    HistoryEntry entry;   ///< without the records that stay as they are
    std::string title;    ///< the title of the entry that the undo itself would add
    std::string question; ///< asks the user to confirm; contains the entry's title
    std::string refusal;  ///< why it cannot be undone now, in the user's language; empty when it can
    std::vector<std::string> losses; ///< a sentence for each thing that is not restored exactly
    /// The runs, in order; after them the servers are told to read their settings again.
    std::vector<PlannedRun> records;
    std::vector<FileChange> files; ///< `before` is to replace what is there
    std::vector<PlannedRun> folders;
    bool hangsUpAFP = false;
    bool hangsUpSMB = false;
};

/// Works out how to undo `entry` in the current state. `all` are the entries of the history, the newest
/// first; a later one that builds on this entry is named in the refusal. What is already as it was before the
/// entry is left alone, so that an interrupted undo can be repeated.
[[nodiscard]] UndoPlan planUndo(const HistoryEntry& entry, const std::vector<HistoryEntry>& all,
                                ChangedFile changedFile = ChangedFile::Refused);

/// Carries a plan out, run by run, as a part of the current action: first the directory, in one transaction,
/// then the settings files, the folders and the servers. Fails at the first failed run, which has beeped and
/// been logged, or if after the transaction the directory's records are not as they should be.
[[nodiscard]] platform::Status carryOut(const UndoPlan& plan);

} // namespace review
