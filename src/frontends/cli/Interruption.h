#pragma once

#include <array>

#include <signal.h>

namespace frontend {

/// Holds back Ctrl-C, SIGTERM and SIGHUP, which would end a command at once: with changes that are not in the
/// history, or with a terminal that does not show what is typed. The command looks whether one has come, and
/// stops where it can. Signals that are ignored stay so. Only one object at a time holds them back; inside
/// its lifetime others do nothing.
class Interruption {
  public:
    Interruption() = default;
    /// If a signal has come, ends the program by it.
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    void begin();

    [[nodiscard]] static bool hasCome();

  private:
    static constexpr std::array<int, 3> signals{SIGINT, SIGTERM, SIGHUP};

    bool isActive_ = false;
    std::array<struct sigaction, signals.size()> before_{};
};

} // namespace frontend
