#pragma once

#include <stdexcept>
#include <string>

namespace frontend {

/// The exit status of a command.
enum class CommandStatus {
    Done = 0,
    Failed = 1,
    WrongUse = 2,
    NeedsAnswer = 3,          ///< it would have been asked, and nobody is there to answer
    AdministratorRefused = 4, ///< nobody gave the administrator's consent or password
    HasProblems = 5,          ///< what was asked for was found out, and it is not as it should be
};

/// Ends a command.
class CommandFailure : public std::runtime_error {
  public:
    CommandFailure(CommandStatus status, const std::string& text)
        : std::runtime_error(text), status_(status) {}

    [[nodiscard]] CommandStatus status() const { return status_; }

  private:
    CommandStatus status_;
};

} // namespace frontend
