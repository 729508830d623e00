#pragma once

#include "platform/foundation/Services.h"
#include "platform/security/Authority.h"
#include "review/HistoryStore.h"

#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>

namespace review {

/// Wraps a host's authority and records what each action changes: at the action's first run it copies the
/// directory, before a run that changes a settings file or a folder it remembers that, and at the action's
/// end compares. A failure to record is logged, but does not stop the action.
class Recorder : public platform::Authority, public platform::PendingWrites {
  public:
    /// `services` are those of the host that will use this recorder.
    explicit Recorder(const platform::Services& services);
    ~Recorder() override;

    [[nodiscard]] std::unique_ptr<platform::AuthorizationSession> createSession(OSStatus* status) override;
    [[nodiscard]] OSStatus copyRights(platform::AuthorizationSession& session,
                                      const AuthorizationRights& rights, AuthorizationFlags flags) override;
    void destroyRights(platform::AuthorizationSession& session) override;
    [[nodiscard]] OSStatus execute(platform::AuthorizationSession& session, const std::string& tool,
                                   std::span<const std::string> arguments, std::string* output) override;

    void settle() override;
    void takeBack() override;
    void endAction() override;

    /// The current action undoes the entry number `undone`; its own entry gets this title. It has failed
    /// unless endUndo() is called.
    void beginUndo(std::int64_t undone, std::string title);

    /// Refuses all further runs until the current action has ended, except the run that has been announced if
    /// `madeStill`.
    void stopAction(bool madeStill) {
        isStopped_ = true;
        finishesRun_ = madeStill;
    }

    /// The undo got to its end.
    void endUndo() { undoFailed_ = false; }

    /// The undo that has ended had been begun before, and its entry is to hold what both did: all of
    /// `undone`'s changes, the other way round.
    void completeUndo(HistoryEntry undone) { completed_ = std::move(undone); }

    [[nodiscard]] const HistoryStore& store() const { return store_; }

    /// The newest entry that was added to the history since the last call, or none.
    [[nodiscard]] std::optional<HistoryEntry> takeAdded() { return std::exchange(added_, std::nullopt); }

    /// Why something is not in the history that was changed since the last call; empty when everything is.
    [[nodiscard]] std::string takeLoss() { return std::exchange(loss_, {}); }

  private:
    class Before; // the directory before the action's first run

    /// Logs `format` with why the action's changes are not kept, and remembers why.
    void lose(const char* format, const std::string& why);
    void note(const std::string& tool, std::span<const std::string> arguments);
    /// What entry_ says of the settings file; added as it is now if it is not there yet.
    FileChange& fileAt(const std::string& path);
    /// False, with nothing added, when the directory cannot be read now.
    [[nodiscard]] bool addRecords();
    void finish();

    std::shared_ptr<platform::Authority> authority_;
    std::shared_ptr<platform::PendingWrites> pending_; ///< may be null
    HistoryStore store_;
    std::unique_ptr<Before> before_;               ///< null until the action's first run
    HistoryEntry entry_;                           ///< the current action's
    std::optional<HistoryEntry> completed_;        ///< the entry that a repeated undo has undone
    std::optional<HistoryEntry> added_;            ///< the newest since takeAdded()
    std::string loss_;                             ///< why changes are not kept, since takeLoss()
    std::unordered_set<std::string> notedRecords_; ///< paths of the records that entry_ names
    bool setsPassword_ = false;
    bool undoFailed_ = false;
    bool isStopped_ = false;
    bool finishesRun_ = false;
};

/// The state of a folder; none when it cannot be examined.
[[nodiscard]] std::optional<FolderState> folderStateOf(const std::string& path);
/// The bytes of a settings file; none when there is no such file, or it cannot be read.
[[nodiscard]] std::optional<std::string> settingsBytes(const std::string& path);

} // namespace review
