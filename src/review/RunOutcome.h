#pragma once

#include "review/Plan.h"

#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace review {

/// Whether `output`, which a run has written, says that it failed. A share that stands only in smb.conf has
/// no record: that its deletion finds none is no failure, because nothing is left to do.
[[nodiscard]] bool meansFailure(std::string_view tool, std::span<const std::string> arguments,
                                std::string_view output);

/// Tells a front-end, which learns of runs step by step, the same. The application beeps for all output.
class RunOutcome {
  public:
    void begin(const std::string& tool, std::span<const std::string> arguments) {
        run_ = {tool, {arguments.begin(), arguments.end()}, ""};
    }

    /// Whether the run has failed, which has written `output`.
    [[nodiscard]] bool hasFailed(std::string_view output) {
        const bool hasFailed = meansFailure(run_.tool, run_.arguments, output);
        expectsBeep_ = !hasFailed;
        return hasFailed;
    }

    /// Whether a beep is only about a run that has not failed.
    [[nodiscard]] bool explainsBeep() { return std::exchange(expectsBeep_, false); }

  private:
    PlannedRun run_;
    bool expectsBeep_ = false;
};

} // namespace review
