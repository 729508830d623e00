#pragma once

#include <optional>
#include <string>

namespace frontend {

// The person at the terminal, if there is one. What is asked goes to the terminal itself, so that a command's
// output stays its own.

/// True when somebody can be asked: standard input and standard error are a terminal.
[[nodiscard]] bool isAtTerminal();

/// Says something beside a question.
void tell(const std::string& text);

/// Asks a question of yes and no; anything but yes is no.
[[nodiscard]] bool askYesOrNo(const std::string& question);

/// Asks for a line that is not shown while it is typed; none at the end of the input.
[[nodiscard]] std::optional<std::string> askSecret(const std::string& prompt);

/// The first line of what can be read from a descriptor; none when it cannot be read.
[[nodiscard]] std::optional<std::string> firstLineOf(int descriptor);

} // namespace frontend
