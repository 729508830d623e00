#pragma once

#include "platform/posix/Process.h"

#include <string>
#include <vector>

using Finished = platform::FinishedProcess;

/// Runs a program to its end with `input` as its standard input. `environment` ("NAME=VALUE") is added to
/// this process's.
[[nodiscard]] Finished runProgram(const std::vector<std::string>& command, const std::string& input = {},
                                  const std::vector<std::string>& environment = {});

/// A program that is talked to line by line. The destructor closes its input and waits for it.
class Conversation {
  public:
    explicit Conversation(const std::vector<std::string>& command);
    ~Conversation();
    Conversation(const Conversation&) = delete;
    Conversation& operator=(const Conversation&) = delete;

    /// Sends a line and returns the next line that holds `part`; where the program ends without one, all that
    /// it said since.
    [[nodiscard]] std::string ask(const std::string& line, const std::string& part);

  private:
    platform::ChildProcess child_;
};

/// A TCP port on which nothing listens now.
[[nodiscard]] int freePort();
