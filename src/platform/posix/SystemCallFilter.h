#pragma once

namespace platform {

/// From now on refuses, to this process and everything it starts, system calls that are not needed for
/// working on files: those that look into other processes, reach a network, load something into the kernel,
/// or change the computer itself. They fail with EPERM, or as if the call did not exist. The filter cannot be
/// removed, and also prevents gaining rights by starting programs. Returns false, refusing nothing, when the
/// kernel has no such filters, or libseccomp cannot make one of the rules for it.
bool takeSystemCallFilter();

} // namespace platform
