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

    /// Returns the password: the first line of the given source, or else what is typed twice at the terminal.
    /// Ends the command when there is none, or none that can be used.
    [[nodiscard]] std::string read(const std::string& user) const;
};

} // namespace frontend
