#pragma once

#include <stdexcept>
#include <string>

namespace frontend {

/// The exit status of a command.
enum class CommandStatus {
    Done = 0,
    Failed = 1,
    WrongUse = 2,
    NeedsAnswer = 3,          ///< a question came up, and nobody was there to answer it
    AdministratorRefused = 4, ///< the administrator's consent or password was not given
    HasProblems = 5,          ///< the command was carried out and found problems
};

/// Thrown to end a command, with its exit status.
class CommandFailure : public std::runtime_error {
  public:
    CommandFailure(CommandStatus status, const std::string& text)
        : std::runtime_error(text), status_(status) {}

    [[nodiscard]] CommandStatus status() const { return status_; }

  private:
    CommandStatus status_;
};

/// Says why the program failed before a command could run: on standard error, or on standard output as the
/// object that the command with --json prints. Returns the exit status.
[[nodiscard]] int tellFailure(const CommandFailure& failure, bool asJSON);

} // namespace frontend
