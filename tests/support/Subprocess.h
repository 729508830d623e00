#pragma once

#include "platform/posix/Process.h"

#include <string>
#include <vector>

using Finished = platform::FinishedProcess;

/// Runs a program to its end with `input` as its standard input. `environment` ("NAME=VALUE") is added to
/// this process's environment.
[[nodiscard]] Finished runProgram(const std::vector<std::string>& command, const std::string& input = {},
                                  const std::vector<std::string>& environment = {});

/// Makes one run, a tool and its arguments, in a helper that `command` starts. Returns the tool's output, or
/// the status of a run that was not started.
[[nodiscard]] std::string outputOfHelper(const std::vector<std::string>& command,
                                         const std::vector<std::string>& run);

/// A conversation with a program, line by line. The destructor closes its input and waits for it.
class Conversation {
  public:
    explicit Conversation(const std::vector<std::string>& command);
    ~Conversation();
    Conversation(const Conversation&) = delete;
    Conversation& operator=(const Conversation&) = delete;

    /// Sends a line and returns the next line that contains `part`. If the program ends without one, returns
    /// everything that it printed since.
    [[nodiscard]] std::string ask(const std::string& line, const std::string& part);

  private:
    platform::ChildProcess child_;
};

/// Returns a TCP port on which nothing listens at the moment.
[[nodiscard]] int freePort();
