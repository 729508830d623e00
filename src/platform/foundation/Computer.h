#pragma once

#include <string>

namespace platform {

/// What a front-end can say of the computer beside what the application shows. Only the system host has one.
class Computer {
  public:
    virtual ~Computer() = default;
    /// What is not installed, each with its package, and what works without it: one line, empty where nothing
    /// is missing. In the user's language.
    [[nodiscard]] virtual std::string whatIsMissing() const = 0;
};

} // namespace platform
