#pragma once

#include "platform/foundation/Services.h"
#include "platform/security/Authority.h"
#include "review/HistoryStore.h"

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>
#include <utility>

namespace review {

/// Stands before a host's authority and keeps what each action changes: at its first run a copy of all that
/// runs can change, at its end what it has become. What cannot be kept is logged, and stops no action.
class Recorder : public platform::Authority, public platform::PendingWrites {
  public:
    /// `services` are those of the host that this is made for.
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

    /// The action that is under way takes the entry of this number back; its own is titled so.
    void beginUndo(std::int64_t undone, std::string title);

    /// No run is made any more until the action that is under way has ended, but for the one that is
    /// announced where that is `madeStill`.
    void stopAction(bool madeStill) {
        isStopped_ = true;
        finishesRun_ = madeStill;
    }

    /// It has not got to its end.
    void failUndo() { undoFailed_ = true; }

    [[nodiscard]] const HistoryStore& store() const { return store_; }

    /// What was added to the history since this was asked last; of several the newest.
    [[nodiscard]] std::optional<HistoryEntry> takeAdded() { return std::exchange(added_, std::nullopt); }

  private:
    class Before; // what runs can change, as it was at the action's first run

    void note(const std::string& tool, std::span<const std::string> arguments);
    void addFiles();
    void finish();

    std::shared_ptr<platform::Authority> authority_;
    std::shared_ptr<platform::PendingWrites> pending_; ///< may be null
    HistoryStore store_;
    std::unique_ptr<Before> before_;               ///< null before the action's first run
    HistoryEntry entry_;                           ///< of the action that is under way
    std::optional<HistoryEntry> added_;            ///< since somebody has asked
    std::unordered_set<std::string> notedRecords_; ///< those that it names
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
