#pragma once

#include "platform/posix/FileDescriptor.h"
#include "platform/posix/Status.h"

#include <string>

namespace platform {

/// A folder of this user's for temporary files, which only the user may enter. It is removed with its
/// contents by its owner, or, if that was killed, when the user's next folder of the same kind is made.
class TemporaryFolder {
  public:
    /// Makes a folder named "brindle-KIND-" and something random in the folder for temporary files.
    [[nodiscard]] static Result<TemporaryFolder> make(const std::string& kind);
    /// The same in memory, if the system offers that.
    [[nodiscard]] static Result<TemporaryFolder> makeInMemory(const std::string& kind);

    TemporaryFolder(TemporaryFolder&& other) noexcept;
    ~TemporaryFolder();
    TemporaryFolder& operator=(TemporaryFolder&&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

  private:
    TemporaryFolder(std::string path, FileDescriptor lock);

    [[nodiscard]] static Result<TemporaryFolder> makeIn(const std::string& place, const std::string& kind);

    std::string path_;    ///< empty when there is nothing to remove
    FileDescriptor lock_; ///< tells other processes that this one is alive
};

} // namespace platform
