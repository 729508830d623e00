#pragma once

namespace platform {

/// Makes the kernel refuse, to this process and every program that it starts, the system calls that work on
/// files does not need: those that look into other processes, use a network, load something into the kernel,
/// or change the state of the computer. They fail with EPERM, or with an error that says that there is no
/// such thing. This cannot be undone, and these programs can no longer gain rights either. False when the
/// kernel has no such filters; then nothing is refused.
bool takeSystemCallFilter();

} // namespace platform
