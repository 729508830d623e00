#pragma once

#include "platform/posix/FileDescriptor.h"
#include "platform/posix/Status.h"

namespace platform {

/// The right to change something, which only one of a user's processes has at a time: all of them write new
/// settings to the same temporary files, and each knows of smb.conf only what it has read. It is a lock on
/// Services::writersFile, which the system releases when the process ends, however it ends. A host has one
/// (Host::sharedInstance).
class WritersTurn {
  public:
    /// How long an action may wait: the window stands still meanwhile.
    static constexpr int actionSeconds = 5;
    /// The same for a command.
    static constexpr int runSeconds = 60;

    /// Takes the right until the current action has ended; does nothing if this process has it. Waits up to
    /// `seconds` for another process, and then fails, saying which one it is. Where the lock cannot be made,
    /// that is logged, and everything goes on without it.
    [[nodiscard]] Status take(int seconds);

    /// The same until this process ends.
    [[nodiscard]] Status takeForGood(int seconds);

    void endAction();

  private:
    FileDescriptor lock_;
    bool isForGood_ = false;
};

} // namespace platform
