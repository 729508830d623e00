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

/// One brindle-helper that serves run after run, of one action or of several. It ends by itself when nothing
/// is asked of it for five minutes (HelperProtocol.h), and another one is started for the next run. What the
/// directory's tools change stays one open transaction of it until settle(), and is taken back when the
/// helper, or this program, ends before that.
class HelperSession {
  public:
    /// `command` is the helper's path with its options. `patience` is how long it may take to start a run.
    explicit HelperSession(std::vector<std::string> command,
                           std::chrono::milliseconds patience = std::chrono::seconds(30));
    /// Takes back what was not settled.
    ~HelperSession();
    HelperSession(const HelperSession&) = delete;
    HelperSession& operator=(const HelperSession&) = delete;

    /// Runs `tool` to its end, in the helper that runs already or in a new one. On success `*output` (when
    /// not null) is what the tool wrote to its standard output.
    /// errAuthorizationDenied when the program in front of a new helper refused;
    /// errAuthorizationToolExecuteFailure when the helper could not be started, refused the tool, took too
    /// long or ended in the middle.
    [[nodiscard]] OSStatus run(const std::string& tool, std::span<const std::string> arguments,
                               std::string* output);

    /// Starts a helper by another `command`, whose first program reads `firstInput` before it; instead of one
    /// that runs. `firstInput` may be a secret: no copy of it is left.
    [[nodiscard]] Status start(const std::vector<std::string>& command, std::string_view firstInput);

    /// Whether a helper waits for the next run.
    [[nodiscard]] bool isRunning() const { return helper_.has_value(); }

    /// Commits. Ok when there is nothing to commit; a failure has taken back everything since the last
    /// commit.
    [[nodiscard]] Status settle();

    /// Ends the action; the helper stays for the next one.
    void endAction();
    /// The same, and lets the helper go, waiting for its end.
    void end();

  private:
    struct Answer {
        std::string output;
        int status = 0;
    };

    /// Lets go a helper that has ended by itself between two actions, or is about to.
    void letGoIdle();
    [[nodiscard]] Status startWith(const std::vector<std::string>& command);
    /// Hands a frame over and reads what is said to it; none when the helper refuses.
    [[nodiscard]] Result<std::optional<Answer>> ask(std::string_view frame);
    [[nodiscard]] Result<Answer> readAnswer();
    [[nodiscard]] Status read(std::span<char> bytes);
    /// Waits for something to read; false: the user has given up.
    [[nodiscard]] bool isAnswered() const;
    /// The helper cannot be talked to any more.
    void giveUp();
    void letGo();

    std::vector<std::string> command_;
    std::chrono::milliseconds patience_;
    std::optional<ChildProcess> helper_;
    std::chrono::steady_clock::time_point lastAsked_; ///< when it was
    // What the helper has written and nobody has read yet: an answer comes as a whole.
    std::array<char, 4096> received_{};
    std::span<const char> unread_; ///< of it
    std::vector<pid_t> abandoned_; ///< helpers that end by themselves, to be collected
    bool holdsChanges_ = false;    ///< the directory's tools have run since the last commit
    std::string lost_;             ///< why their changes are gone
    bool wasDenied_ = false;       ///< what stands before the helper has refused to start it
    bool isGivenUp_ = false;       ///< the user has given up waiting: the rest of the action is not begun
};

} // namespace platform
