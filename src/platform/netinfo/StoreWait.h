#pragma once

#include <string>

namespace platform {

/// Which other process has locked the SQLite file, as "PROGRAM (process ID)"; if there are several, the one
/// that writes. Empty when no other process has locked it, or none that can be seen. Does not open the file,
/// because closing a descriptor of it would release this process's locks.
[[nodiscard]] std::string storeHolder(const std::string& file);

/// The name that the user is told for the store `file`.
[[nodiscard]] std::string shownStore(const std::string& file);

/// Says why the store `file` cannot be used, given SQLite's `error`, and what to do. `waited` is how many
/// seconds the caller has waited for others.
[[nodiscard]] std::string storeProblem(const std::string& file, int error, int waited);

/// The same for a store that could not even be opened.
[[nodiscard]] std::string storeOpeningProblem(const std::string& file);

/// Whether the current action has already waited in vain for the file. An action uses the directory many
/// times, but waits only once for whoever holds it.
[[nodiscard]] bool hasWaitedInVain(const std::string& file);
/// Records that a wait was in vain, and logs who holds the file.
void rememberVainWait(const std::string& file, int waited);

/// Why the last attempt to read the directory failed; empty when it succeeded.
[[nodiscard]] const std::string& directoryProblem();
void setDirectoryProblem(std::string problem);

} // namespace platform
