#pragma once

#include "directory/DirectoryView.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace review {

/// A record of the directory before and after; none means that there is no such record.
struct RecordChange {
    using State = std::optional<DirectoryView::Record>;

    std::string path;
    State before;
    State after;
};

/// Whether both have the same properties in the same order, or neither exists.
[[nodiscard]] bool isSameRecord(const RecordChange::State& one, const RecordChange::State& other);

/// The contents of a settings file before and after, with the path that the application uses; none means that
/// there is no such file.
struct FileChange {
    std::string path;
    std::optional<std::string> before;
    std::optional<std::string> after;
};

struct FolderState {
    uid_t owner = 0;
    gid_t group = 0;
    mode_t mode = 0;      ///< 07777
    std::string accounts; ///< "OWNER:GROUP"; a part is empty if its id has no name

    [[nodiscard]] bool isSame(const FolderState& other) const {
        return owner == other.owner && group == other.group && mode == other.mode;
    }
};

/// A folder's owner, group and mode before and after.
struct FolderStep {
    std::string path;
    FolderState before;
    FolderState after;
};

/// A tool run in the form in which it may be shown, and its result.
struct PastRun {
    std::string tool;
    std::vector<std::string> arguments; ///< a password is "********"
    std::string output;
    bool hasFailed = false;
};

/// An action that changed something.
struct HistoryEntry {
    std::int64_t number = 0;
    std::int64_t time = 0; ///< seconds since 1970
    std::string user;      ///< the login name of the user who did it
    std::string title;     ///< in that user's language
    bool hasFailed = false;
    bool isUndone = false;
    bool isDamaged = false;  ///< its contents cannot be read any more
    std::int64_t undoes = 0; ///< the entry that this one has undone; 0: it is not an undo
    std::vector<PastRun> runs;
    std::vector<RecordChange> records; ///< in the order in which they were first touched
    std::vector<FileChange> files;
    std::vector<FolderStep> folders;

    /// Whether the entry holds anything that can be undone. Setting a password cannot.
    [[nodiscard]] bool canComeBack() const { return !records.empty() || !files.empty() || !folders.empty(); }
};

/// Whether something was not done that the action was to do. `hasFailed` of an entry is also set by a run
/// that only found nothing to do.
[[nodiscard]] bool hasGoneWrong(const HistoryEntry& entry);
/// "done", "failed" or "undone"; "failed" for a damaged entry.
[[nodiscard]] const char* outcomeOf(const HistoryEntry& entry, bool hasFailed);

/// The same as the tools mean it, for scripts.
[[nodiscard]] inline const char* outcomeOf(const HistoryEntry& entry) {
    return outcomeOf(entry, entry.hasFailed);
}

/// The entry's time in UTC: "2026-11-25T14:03:07Z".
[[nodiscard]] std::string timeOf(const HistoryEntry& entry);
/// A title, in the user's language, that says what an action other than an undo has done: `Share "Docs"
/// created`.
[[nodiscard]] std::string titleOf(const HistoryEntry& entry);

} // namespace review
