#pragma once

#include "platform/posix/Status.h"
#include "platform/samba/SambaPaths.h"

#include <string>

namespace platform {

/// The folder that stands for the computer on the embedded host: the directory's store, the two servers'
/// settings and one example folder. Knows where things lie in it, and makes it. Holds only the path.
class EmbeddedRoot {
  public:
    /// A relative path is taken from the current folder.
    explicit EmbeddedRoot(const std::string& folder);

    /// $BRINDLE_ROOT, or else `brindle` in $XDG_DATA_HOME or in ~/.local/share.
    [[nodiscard]] static std::string defaultFolder();

    [[nodiscard]] const std::string& folder() const { return folder_; }

    [[nodiscard]] std::string storeFile() const;
    /// The real path of one of the application's fixed paths: below the root for the two settings files,
    /// `path` itself for every other.
    [[nodiscard]] std::string map(const std::string& path) const;
    /// The files of the root's own file server.
    [[nodiscard]] SambaPaths sambaPaths() const;

    /// If there is no store, makes whatever is missing: the folder, sample settings, and last of all the
    /// store, filled from the computer's accounts. Files that already exist are kept. When two programs do
    /// this at the same time, the second waits for the first. Fails, saying what to do, when something cannot
    /// be made, or when the store was written by a later Brindle.
    [[nodiscard]] Status makeIfMissing() const { return makeIfMissing(folder_); }

    /// The same for a folder that stands for another root, `folder`, which the sample settings then name.
    [[nodiscard]] Status makeIfMissing(const std::string& folder) const;

  private:
    std::string folder_;
};

/// The file name of the store in a root.
inline constexpr const char* storeName = "directory.db";

} // namespace platform
