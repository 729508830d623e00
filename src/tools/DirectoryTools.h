#pragma once

#include "platform/host/SystemFiles.h"
#include "platform/netinfo/Store.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include <sys/types.h>

namespace tools {

// The directory's tools as functions, so that the programs, the helper and the tests run the same code. A
// tool that fails changes nothing, writes one line that says what failed, on what, and what to do, and has
// the status 1.

/// The directory that a tool works on.
struct DirectoryPlace {
    /// Only a store, without a server and its password database.
    DirectoryPlace(std::string file) : storeFile(std::move(file)) {}

    /// The store of the embedded root at `rootFolder`; changes to accounts reach the root's file server too.
    [[nodiscard]] static DirectoryPlace ofRoot(const std::string& rootFolder);

    /// This computer itself: its accounts, and the store for what they cannot hold. `user` is the user who
    /// runs Brindle.
    [[nodiscard]] static DirectoryPlace ofComputer(platform::SystemFiles files, uid_t user);

    struct Computer {
        platform::SystemFiles files;
        uid_t user = 0;
    };

    std::string storeFile;
    std::string root; ///< empty for only a store and for this computer
    std::optional<Computer> computer;
    /// False: dscl only checks its request, the user and, with a root, whether it has a password database.
    bool keepsPasswords = true;
    int waitSeconds = platform::Store::waitSeconds;
};

/// A tool's standard output, which includes error messages, and its exit status.
struct ToolResult {
    std::string output;
    int status = 0;
};

/// `nicl DOMAIN OPERATION PATH [PROPERTY [VALUE...]]`, with the domain ".". -create makes the record, or sets
/// the property to these values; -append adds values at the end; -delete removes the record with all below
/// it, the property, or the values. Waits for other programs that use the directory. After a change below
/// /users or /groups the account lists of the root's file server are rewritten.
[[nodiscard]] ToolResult runNicl(const DirectoryPlace& place, std::span<const std::string> arguments);

/// `dscl DOMAIN -passwd /Users/NAME PASSWORD`: sets the password in the password database of the root's file
/// server and keeps no copy; the caller wipes its own. The directory is not locked while the database is
/// used, which may take ten seconds.
[[nodiscard]] ToolResult runDscl(const DirectoryPlace& place, std::span<const std::string> arguments);

/// `nireport DOMAIN PATH PROPERTY...`: prints the report lines of the records below PATH. Reads the current
/// host's local domain.
[[nodiscard]] ToolResult runNireport(std::span<const std::string> arguments);

/// `niutil -read DOMAIN PATH`: prints one line per property, "NAME: VALUE VALUE...". Reads the current host's
/// local domain.
[[nodiscard]] ToolResult runNiutil(std::span<const std::string> arguments);

/// The whole program of a directory tool, which is one of the four above: reads the options `--root DIR`,
/// `--system`, `--help` and `--version` before the first other word, makes the root if it is missing, runs
/// the tool, prints its output, and returns the exit status (2 for a wrong option).
[[nodiscard]] int directoryToolMain(std::string_view tool, int argc, char** argv);

} // namespace tools
