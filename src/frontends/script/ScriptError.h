#pragma once

#include <stdexcept>
#include <string>

namespace frontend {

/// A fault in a script, with the number of its line, counted from 1. It ends the script.
class ScriptError : public std::runtime_error {
  public:
    ScriptError(int line, const std::string& text) : std::runtime_error(text), line_(line) {}

    [[nodiscard]] int line() const { return line_; }

  private:
    int line_;
};

} // namespace frontend
