#pragma once

namespace platform {

/// Refuses, to this process and whatever it starts, the system calls that none of them needs to work on
/// files: those that look into other processes, reach a network, load something into the kernel, or change
/// what the computer is (EPERM, or what says that there is no such thing). It cannot be taken back, and takes
/// along the right to gain rights by starting programs. False where the kernel has no such filters: nothing
/// is refused then.
bool takeSystemCallFilter();

} // namespace platform
