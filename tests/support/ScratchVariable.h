#pragma once

#include <cstdlib>
#include <optional>
#include <string>

/// Changes a variable of the environment until the end of the block.
class ScratchVariable {
  public:
    ScratchVariable(const char* name, const std::string& value) : name_(name) {
        const char* before = ::getenv(name);
        before_ = before == nullptr ? std::nullopt : std::optional<std::string>(before);
        ::setenv(name, value.c_str(), 1);
    }

    ~ScratchVariable() { before_ ? ::setenv(name_, before_->c_str(), 1) : ::unsetenv(name_); }

    ScratchVariable(const ScratchVariable&) = delete;
    ScratchVariable& operator=(const ScratchVariable&) = delete;

  private:
    const char* name_;
    std::optional<std::string> before_;
};
