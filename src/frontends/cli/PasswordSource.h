#pragma once

#include <CLI/CLI.hpp>

#include <optional>
#include <string>

namespace frontend {

/// Where a command's password comes from: never from an argument, which everybody on the computer can read.
struct PasswordSource {
    bool isStandardInput = false;
    std::optional<int> descriptor;

    /// Adds --password-stdin and --password-fd.
    void addTo(CLI::App& command);

    [[nodiscard]] bool isGiven() const { return isStandardInput || descriptor; }

    /// The password: the first line of what was named, else asked for twice at the terminal. Ends the command
    /// when there is none.
    [[nodiscard]] std::string read(const std::string& user) const;
};

} // namespace frontend
