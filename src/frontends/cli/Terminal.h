#pragma once

#include <optional>
#include <string>

namespace frontend {

// Talking to the person at the terminal, if there is one. Questions go to standard error, so that they do not
// mix with the command's output.

/// True when there is somebody to ask: standard input and standard error are terminals.
[[nodiscard]] bool isAtTerminal();

/// Writes a line that needs no answer.
void tell(const std::string& text);

/// Asks a yes-or-no question. Any answer but yes counts as no.
[[nodiscard]] bool askYesOrNo(const std::string& question);

/// Asks for a line that is not shown while it is typed. Returns none at the end of the input.
[[nodiscard]] std::optional<std::string> askSecret(const std::string& prompt);

/// Returns the first line that can be read from a descriptor; none when reading fails or is interrupted.
[[nodiscard]] std::optional<std::string> firstLineOf(int descriptor);

} // namespace frontend
