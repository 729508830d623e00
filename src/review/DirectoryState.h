#pragma once

#include <string>

// What a front-end asks about the current host's directory without waiting for it.

namespace review {

/// Why the last attempt to read the directory failed; empty when it succeeded.
[[nodiscard]] std::string directoryProblem();
/// The same as a sentence for the person who looks at the lists; empty when they are complete.
[[nodiscard]] std::string directoryNotice();
/// Which program has the directory locked now: "PROGRAM (process ID)"; empty when none is known.
[[nodiscard]] std::string directoryHolder();

/// Whether the directory has that record ("/users/root"); false if finding out would mean waiting. Does not
/// change directoryProblem().
[[nodiscard]] bool hasRecord(const std::string& path);

} // namespace review
