#pragma once

#include "frontends/cli/CommandOptions.h"
#include "platform/commandline/CommandLine.h"

#include <optional>
#include <string>
#include <vector>

namespace frontend {

/// What the program is to do.
enum class Mode { Window, Script, Print, Snapshot, Command };

/// The checked command line. Nothing has been opened or made yet.
struct Options {
    Mode mode = Mode::Window;
    platform::HostOptions host;
    std::string script; ///< the path of the script, "-" for standard input
    std::string table;  ///< the table to print: "shares", "users" or "groups"
    std::string snapshotFolder;
    bool dryRun = false;     ///< carry the script out on copies and change nothing
    bool serve = false;      ///< run a file server of the root's own
    CommandOptions command;  ///< for Mode::Command
    std::optional<int> port; ///< the server's port, 1 to 65535; none for its default

    /// Set when the program only prints this and ends: the help, the version, or an error in the command
    /// line.
    std::optional<platform::CommandLineEnd> end;
};

/// Reads the arguments after the program's name. A value is given in the next argument or after "=". Errors
/// are returned in `end`.
[[nodiscard]] Options parseOptions(std::vector<std::string> arguments);

/// Returns the start of a shell command for the same computer: "brindle --system".
[[nodiscard]] std::string calledFor(const platform::HostOptions& host);

/// Returns the name of what the window works on, which is the same however it was given.
[[nodiscard]] std::string placeOf(const platform::HostOptions& host);

} // namespace frontend
