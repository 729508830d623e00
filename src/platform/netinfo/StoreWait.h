#pragma once

#include <string>

namespace platform {

/// Who keeps others from using the SQLite file, as "PROGRAM (process ID)"; of several the one that writes.
/// Empty where no other process does, or none that can be seen. Opens nothing: a descriptor of the file that
/// is closed would give up the locks of this process.
[[nodiscard]] std::string storeHolder(const std::string& file);

/// Why SQLite's `error` keeps the store `file` from being used, and what to do. `waited` is for how many
/// seconds the caller has waited for others.
[[nodiscard]] std::string storeProblem(const std::string& file, int error, int waited);

/// An action uses the directory many times, and waits for whoever holds it once. Whether one of the waits of
/// the action that is under way has ended in vain.
[[nodiscard]] bool hasWaitedInVain(const std::string& file);
/// One has; logs who holds the file.
void rememberVainWait(const std::string& file, int waited);

/// What keeps the directory from being read: the reason of the last attempt, or empty when that went well.
[[nodiscard]] const std::string& directoryProblem();
void setDirectoryProblem(std::string problem);

} // namespace platform
