#pragma once

#include "platform/posix/Status.h"
#include "platform/samba/SambaPaths.h"

#include <string>

namespace platform {

/// The folder that stands for the computer on the embedded host: the directory's store, the two servers'
/// settings and one example folder. Knows where things lie in it and makes it. Holds nothing but the path.
class EmbeddedRoot {
  public:
    /// An absolute path is kept, another is taken from the current folder.
    explicit EmbeddedRoot(const std::string& folder);

    /// $BRINDLE_ROOT, else `brindle` in $XDG_DATA_HOME or in ~/.local/share.
    [[nodiscard]] static std::string defaultFolder();

    [[nodiscard]] const std::string& folder() const { return folder_; }

    [[nodiscard]] std::string storeFile() const;
    /// The real file behind a wired path: below the root for the two settings files, `path` itself for every
    /// other.
    [[nodiscard]] std::string map(const std::string& path) const;
    /// The files of the root's own file server.
    [[nodiscard]] SambaPaths sambaPaths() const;

    /// Makes what is missing when the store does not exist: the folder, sample settings, and last of all the
    /// store, filled from the computer's accounts. Files that are already there are kept. Two programs that
    /// come at once make one root: the second waits for the first. Fails, and says what to do, when something
    /// cannot be made, or the store that is there was written by a later Brindle.
    [[nodiscard]] Status makeIfMissing() const;

  private:
    std::string folder_;
};

/// The store's file name in a root.
inline constexpr const char* storeName = "directory.db";

} // namespace platform
