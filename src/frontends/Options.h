#pragma once

#include <optional>
#include <span>
#include <stdexcept>
#include <string>

namespace frontend {

/// What a run of the program is for.
enum class Mode { Window, Script, Print, Snapshot, Help, Version };

enum class PrintedTable { Shares, Users, Groups };

/// What the command line asks for, checked. Nothing has been opened or made yet.
struct Options {
    Mode mode = Mode::Window;
    bool system = false; ///< this computer itself instead of an embedded root
    std::string root;    ///< the embedded root's folder; empty for the default
    std::string script;  ///< the script's file, "-" for standard input
    std::string snapshotFolder;
    PrintedTable table = PrintedTable::Shares;
    bool serve = false;      ///< with a file server of the root's own
    std::optional<int> port; ///< the server's, 1 to 65535; none for its default
};

/// An option that makes no sense: what() names it and says what is wrong.
class OptionsError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Reads the arguments after the program's name. A value stands in the next argument or after "=". Throws
/// OptionsError.
[[nodiscard]] Options parseOptions(std::span<const std::string> arguments);

/// How the program is called, for people; ends with a line break.
[[nodiscard]] std::string usage();

} // namespace frontend
