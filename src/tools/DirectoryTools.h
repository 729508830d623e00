#pragma once

#include "platform/host/SystemFiles.h"
#include "platform/netinfo/Store.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include <sys/types.h>

// The directory's tools as functions, so that the programs, the helper and the tests run the same code. A
// tool that cannot do what it was asked has changed nothing and says in one line what failed, on what, and
// what to do; its status is then 1.

/// The directory that a tool works on.
struct DirectoryPlace {
    /// A store alone: no server's password database belongs to it.
    DirectoryPlace(std::string file) : storeFile(std::move(file)) {}

    /// The store of the embedded root at `rootFolder`; changes to accounts reach the root's file server too.
    [[nodiscard]] static DirectoryPlace ofRoot(const std::string& rootFolder);

    /// This computer itself: its accounts, and the store for what they cannot hold. `user` is who runs
    /// Brindle.
    [[nodiscard]] static DirectoryPlace ofComputer(platform::SystemFiles files, uid_t user);

    struct Computer {
        platform::SystemFiles files;
        uid_t user = 0;
    };

    std::string storeFile;
    std::string root; ///< empty for a store alone and for this computer
    std::optional<Computer> computer;
    bool keepsPasswords = true; ///< false: dscl checks its request and the user, and sets nothing
    int waitSeconds = platform::Store::waitSeconds;
};

/// What a tool wrote to its standard output (complaints included), and its exit status.
struct ToolResult {
    std::string output;
    int status = 0;
};

/// `nicl DOMAIN OPERATION PATH [PROPERTY [VALUE...]]`, the domain being ".". -create makes the record, or the
/// property with these values in place of its earlier ones; -append adds values at the end; -delete takes
/// away the record with all below it, the property, or the values. Waits for other programs that use the
/// directory. After a change below /users or /groups the account lists of the root's file server are
/// rewritten.
[[nodiscard]] ToolResult runNicl(const DirectoryPlace& place, std::span<const std::string> arguments);

/// `dscl DOMAIN -passwd /Users/NAME PASSWORD`: hands the password to the password database of the root's file
/// server and keeps no copy; the caller wipes its own. The directory is free again by the time that the
/// database is asked, which may take ten seconds.
[[nodiscard]] ToolResult runDscl(const DirectoryPlace& place, std::span<const std::string> arguments);

/// `nireport DOMAIN PATH PROPERTY...`: the report lines of the records below PATH. Needs the current host,
/// whose local domain it reads.
[[nodiscard]] ToolResult runNireport(std::span<const std::string> arguments);

/// `niutil -read DOMAIN PATH`: one line a property, "NAME: VALUE VALUE...". Reads the current host's local
/// domain.
[[nodiscard]] ToolResult runNiutil(std::span<const std::string> arguments);

/// The whole of a directory tool's program: reads `--root DIR`, `--system`, `--help` and `--version` before
/// the first word that is none of these, makes the root when it is missing, runs the tool, which is one of
/// the four above, prints, and returns the exit status (2 for a wrong option).
[[nodiscard]] int directoryToolMain(std::string_view tool, int argc, char** argv);
