#pragma once

#include "platform/posix/FileDescriptor.h"
#include "platform/posix/Status.h"

#include <functional>
#include <memory>
#include <string>

namespace frontend {

/// The right to show the window on one place, a root or the computer itself, which one process of a user has
/// at a time, from here to its end, however it ends. Who comes second has the first one's window brought to
/// the front instead.
///
/// It is a lock on a file and a socket beside it, in a folder that nobody else may enter: `brindle` in
/// $XDG_RUNTIME_DIR, or, where that is no private folder of the user's, `brindle-UID` among the temporary
/// files.
class OneWindow {
  public:
    /// Takes the right to the window on `place`, an absolute path or any other name. Where another process
    /// has it, asks that one to show its window, handing on what the desktop gave this process for it
    /// (XDG_ACTIVATION_TOKEN), and returns null once it has. Fails where that process does not answer, and
    /// with a system error where there can be no lock.
    [[nodiscard]] static platform::Result<std::unique_ptr<OneWindow>> take(const std::string& place);

    ~OneWindow();
    OneWindow(const OneWindow&) = delete;
    OneWindow& operator=(const OneWindow&) = delete;

    /// Can be read whenever somebody asks for the window.
    [[nodiscard]] int listener() const { return listener_.get(); }

    /// Has `raise` show the window to the one who asks; it gets the token of that start, which may be empty.
    /// Waits for nobody for longer than a moment.
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
