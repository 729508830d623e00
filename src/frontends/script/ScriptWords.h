#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace frontend {

/// A line that cannot be split into words: an open quote, or an unknown escape.
class ScriptSyntaxError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The words of one line of a script; none for an empty line or a comment. Throws ScriptSyntaxError.
[[nodiscard]] std::vector<std::string> splitScriptLine(std::string_view line);

/// `text` in double quotes, with the escapes that splitScriptLine reads. Other bytes stay as they are.
[[nodiscard]] std::string quotedText(std::string_view text);

/// `text` as a word: bare where that cannot be misread, else quoted.
[[nodiscard]] std::string scriptWord(std::string_view text);

} // namespace frontend
