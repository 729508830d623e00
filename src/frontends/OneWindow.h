#pragma once

#include "platform/posix/FileDescriptor.h"
#include "platform/posix/Status.h"

#include <functional>
#include <memory>
#include <string>

namespace frontend {

/// The right to show the window on one place: a root, or the computer itself. Only one process of a user has
/// it at a time, until that process ends, however it ends. A second start brings the first one's window to
/// the front instead.
///
/// The right consists of a lock on a file and a socket beside it, in a folder that nobody else may enter:
/// `brindle` in $XDG_RUNTIME_DIR or, when that is not a private folder of the user's, `brindle-UID` in the
/// folder for temporary files.
class OneWindow {
  public:
    /// Takes the right to the window on `place`, an absolute path or any other name. When another process has
    /// it, asks that process to show its window, passes on the token that the desktop gave this process
    /// (XDG_ACTIVATION_TOKEN), and returns null once the window is shown. Fails when that process does not
    /// answer, and with a system error when the lock cannot be made.
    [[nodiscard]] static platform::Result<std::unique_ptr<OneWindow>> take(const std::string& place);

    ~OneWindow();
    OneWindow(const OneWindow&) = delete;
    OneWindow& operator=(const OneWindow&) = delete;

    /// A descriptor that becomes readable when another process asks for the window.
    [[nodiscard]] int listener() const { return listener_.get(); }

    /// Answers the process that asks: calls `raise` with that process's token, which may be empty, to show
    /// the window. Never waits for long.
    void answer(const std::function<void(const std::string& token)>& raise) const;

  private:
    OneWindow(platform::FileDescriptor folder, platform::FileDescriptor lock, std::string socket);

    [[nodiscard]] platform::Status listen();

    platform::FileDescriptor folder_;
    platform::FileDescriptor lock_;
    std::string socket_; ///< its name in the folder
    platform::FileDescriptor listener_;
};

} // namespace frontend
