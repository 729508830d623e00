#pragma once

#include "platform/posix/Process.h"
#include "platform/posix/Status.h"
#include "platform/security/AuthorizationTypes.h"

#include <array>
#include <chrono>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// A brindle-helper that serves run after run, for one action or several. It ends by itself after five
/// minutes without a request (HelperProtocol.h); another one is then started for the next run. The changes of
/// the directory's tools are one open transaction in the helper until settle(). They are undone if the helper
/// or this program ends before that.
class HelperSession {
  public:
    /// `command` is the helper's path with its options. `patience` is how long the helper may take to start a
    /// run, and `answerLimit` how long its whole reply may take.
    explicit HelperSession(std::vector<std::string> command,
                           std::chrono::milliseconds patience = std::chrono::seconds(30),
                           std::chrono::milliseconds answerLimit = std::chrono::minutes(10));
    /// Undoes what was not settled.
    ~HelperSession();
    HelperSession(const HelperSession&) = delete;
    HelperSession& operator=(const HelperSession&) = delete;

    /// Runs `tool` to its end in the running helper or in a new one. On success `*output` (unless null)
    /// receives the tool's standard output. Returns errAuthorizationDenied when the program that starts a new
    /// helper (sudo) refused, and errAuthorizationToolExecuteFailure when the helper could not be started,
    /// refused the tool, took too long or ended half way.
    [[nodiscard]] OSStatus run(const std::string& tool, std::span<const std::string> arguments,
                               std::string* output);

    /// Ends a running helper and starts one with another `command`, whose first program (sudo) reads
    /// `firstInput` from the input before the helper does. `firstInput` may be a secret; no copy of it is
    /// left in memory.
    [[nodiscard]] Status start(const std::vector<std::string>& command, std::string_view firstInput);

    /// Whether there is a helper waiting for the next run.
    [[nodiscard]] bool isRunning() const { return helper_.has_value(); }

    /// Commits. Ok when there is nothing to commit. A failure means that everything since the last commit is
    /// lost.
    [[nodiscard]] Status settle();

    /// Ends the action, which must be settled. The helper stays for the next one, unless a run has failed: a
    /// helper waits only once for whoever holds the directory, and each action may wait.
    void endAction();
    /// The same, then ends the helper and waits for it, but not for ever.
    void end();

  private:
    struct Answer {
        std::string output;
        int status = 0;
    };

    /// Collects a helper that has ended by itself between two actions, or ends one that is about to.
    void letGoIdle();
    [[nodiscard]] Status startWith(const std::vector<std::string>& command);
    /// Sends a frame and reads the reply; none when the helper refuses the request.
    [[nodiscard]] Result<std::optional<Answer>> ask(std::string_view frame);
    [[nodiscard]] Result<Answer> readAnswer();
    [[nodiscard]] Status read(std::span<char> bytes);
    /// Waits until there is something to read; false when the user has given up.
    [[nodiscard]] bool isAnswered() const;
    /// Lets go of the helper and returns its exit status. A helper that does not end in time is killed. If it
    /// cannot be killed, it is abandoned and there is no status.
    std::optional<int> collect();
    /// Gives up a helper with which communication has failed.
    void giveUp();
    void letGo();

    std::vector<std::string> command_;
    std::chrono::milliseconds patience_;
    std::chrono::milliseconds answerLimit_;
    std::chrono::steady_clock::time_point answerBy_; ///< when the current reply must be complete
    std::optional<ChildProcess> helper_;
    std::chrono::steady_clock::time_point lastAsked_; ///< when the helper was last asked
    // A buffer for what the helper has written.
    std::array<char, 4096> received_{};
    std::span<const char> unread_; ///< the part of it that has not been read yet
    std::vector<pid_t> abandoned_; ///< helpers that will end by themselves and must be collected
    bool holdsChanges_ = false;    ///< the directory's tools have run since the last commit
    std::string lost_;             ///< why those changes are lost
    bool hasFailed_ = false;       ///< a tool has failed in this action
    bool wasDenied_ = false;       ///< sudo has refused to start the helper
    bool isGivenUp_ = false; ///< the user has given up waiting, so the rest of the action is not started
};

} // namespace platform
