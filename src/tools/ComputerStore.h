#pragma once

#include "platform/host/SystemFiles.h"
#include "platform/netinfo/Store.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/posix/Status.h"

/// The right to change this computer's directory, one run after another; held while it lives. A program that
/// is started meanwhile holds it too until it ends, so that nobody judges what a killed run has done while
/// the program that it started is still at it.
class ComputerLock {
  public:
    /// Waits so many seconds for other runs, and makes the folder and the store where there are none yet.
    /// Fails when others take too long or something cannot be made.
    [[nodiscard]] static platform::Result<ComputerLock> take(const platform::SystemFiles& files,
                                                             int waitSeconds);

  private:
    explicit ComputerLock(platform::FileDescriptor file) : file_(std::move(file)) {}

    platform::FileDescriptor file_;
};
