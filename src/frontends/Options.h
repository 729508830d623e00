#pragma once

#include "frontends/cli/CommandOptions.h"
#include "platform/commandline/CommandLine.h"

#include <optional>
#include <string>
#include <vector>

namespace frontend {

/// What the program is run for.
enum class Mode { Window, Script, Print, Snapshot, Command };

/// What the command line asks for, checked. Nothing has been opened or made yet.
struct Options {
    Mode mode = Mode::Window;
    platform::HostOptions host;
    std::string script; ///< the script's file, "-" for standard input
    std::string table;  ///< the printed table: "shares", "users" or "groups"
    std::string snapshotFolder;
    bool dryRun = false;     ///< the script works on copies and changes nothing
    bool serve = false;      ///< with a file server of the root's own
    CommandOptions command;  ///< in the mode Command
    std::optional<int> port; ///< the server's, 1 to 65535; none for its default

    /// Set when the run only prints this: the help, the version, or what is wrong with the command line.
    std::optional<platform::CommandLineEnd> end;
};

/// Reads the arguments after the program's name. A value stands
/// in the next argument or after "=".
[[nodiscard]] Options parseOptions(std::vector<std::string> arguments);

/// What a command for the same computer begins with: "brindle --system". For a shell.
[[nodiscard]] std::string calledFor(const platform::HostOptions& host);

} // namespace frontend
