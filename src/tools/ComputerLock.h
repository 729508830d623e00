#pragma once

#include "platform/host/SystemFiles.h"
#include "platform/netinfo/Store.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/posix/Status.h"

namespace tools {

/// A lock, held as long as this object lives, that lets only one run at a time change this computer's
/// directory. A program that is started meanwhile inherits the lock and holds it until it ends, so that
/// nobody finishes the work of a killed run while the program that it started is still running.
class ComputerLock {
  public:
    /// Takes the lock, waiting up to `waitSeconds` for other runs, and makes the folder and the store if
    /// there are none yet. Fails when others take too long or something cannot be made.
    [[nodiscard]] static platform::Result<ComputerLock> take(const platform::SystemFiles& files,
                                                             int waitSeconds);

  private:
    explicit ComputerLock(platform::FileDescriptor file) : file_(std::move(file)) {}

    platform::FileDescriptor file_;
};

} // namespace tools
