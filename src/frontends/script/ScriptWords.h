#pragma once

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace frontend {

/// Thrown for a line that cannot be split into words: a missing quote, an unknown escape.
class ScriptSyntaxError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Returns the words of one line of a script; none for an empty line or a comment. Throws ScriptSyntaxError.
[[nodiscard]] std::vector<std::string> splitScriptLine(std::string_view line);

/// Returns `text` in double quotes, with the escapes that splitScriptLine reads. Other bytes stay unchanged.
[[nodiscard]] std::string quotedText(std::string_view text);

/// Returns `text` as a word: bare when that cannot be misread, else quoted.
[[nodiscard]] std::string scriptWord(std::string_view text);

/// Returns a tool run as words with blanks between them.
[[nodiscard]] std::string scriptWords(const std::string& tool, std::span<const std::string> arguments);

} // namespace frontend
