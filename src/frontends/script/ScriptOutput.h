#pragma once

#include "platform/foundation/Services.h"

#include <memory>
#include <ostream>
#include <string_view>

namespace frontend {

/// The standard output of a scripted run. Presenter, log and commands share it, so that its lines are in the
/// order in which things happened. Every line is flushed, so that a program that reads the other end of a
/// pipe sees it at once.
class ScriptOutput {
  public:
    /// `stream` must outlive this.
    explicit ScriptOutput(std::ostream& stream) : stream_(stream) {}

    /// Writes `text` and a line break. Does nothing once silenced.
    void line(std::string_view text);

    /// Stops all output. Used after a fault: what happens while the application then shuts down is not part
    /// of the script's output.
    void silence() { silent_ = true; }

    [[nodiscard]] bool isSilent() const { return silent_; }

    /// True when something could not be written: a full disk, a reader that is gone.
    [[nodiscard]] bool hasFailed() const { return !stream_.good(); }

  private:
    std::ostream& stream_;
    bool silent_ = false;
};

/// Writes each entry of the system log as a `log` line, explanations on `errors`, and passes all on to the
/// real log.
class ScriptLog : public platform::Log {
  public:
    /// `kept` may be null; `errors` must outlive this.
    ScriptLog(std::shared_ptr<ScriptOutput> output, std::ostream& errors, std::shared_ptr<platform::Log> kept)
        : output_(std::move(output)), errors_(errors), kept_(std::move(kept)) {}

    void write(std::string_view text) override;
    void explain(std::string_view text) override;

  private:
    std::shared_ptr<ScriptOutput> output_;
    std::ostream& errors_;
    std::shared_ptr<platform::Log> kept_;
};

} // namespace frontend
