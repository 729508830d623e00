#pragma once

#include "platform/posix/FileDescriptor.h"
#include "platform/posix/Status.h"

#include <optional>
#include <string>
#include <string_view>

#include <sys/stat.h>

namespace platform {

// Files are written whole: a temporary file beside the target is created exclusively, filled, flushed to disk
// and renamed over the target, and the folder is flushed. A reader sees the old content or the new one, never
// a part. The next writer in the folder removes the temporary files of writers that were killed.

/// What happens to a symbolic link at the end of a path that is written to.
enum class LinkRule {
    Replace, ///< a file replaces the link; the file that the link names does not change
    Follow   ///< the link stays, and the file that it names (which need not exist) is written
};

/// The rules under which a file is written.
struct WholeFileRules {
    mode_t mode = 0644; ///< for a new file, before the process's umask is applied
    LinkRule links = LinkRule::Replace;
};

/// Writes `bytes` to the file at `path`. On failure the file is unchanged and no temporary file is left.
[[nodiscard]] Status writeWholeFile(const std::string& path, std::string_view bytes,
                                    const WholeFileRules& rules = {});

/// A file's place: its folder, held open, and its name there. All steps of a write then happen in that
/// folder, even if a path to it changes meanwhile. For writing several files that belong together.
class FilePlace {
  public:
    /// The place of the file that a write to `path` would write. Fails when its folder does not exist.
    [[nodiscard]] static Result<FilePlace> find(const std::string& path, LinkRule links);

    [[nodiscard]] const std::string& name() const { return name_; }

    [[nodiscard]] int folder() const { return folder_.get(); }

    /// The path of the file `name` in the place's folder.
    [[nodiscard]] std::string pathOf(const std::string& name) const { return folderPath_ + "/" + name; }

  private:
    FilePlace(FileDescriptor folder, std::string folderPath, std::string name);

    FileDescriptor folder_;
    std::string folderPath_;
    std::string name_;
};

/// A file that is complete on disk under a temporary name. It is removed unless it is given its real name.
/// Its place must outlive it.
class WaitingFile {
  public:
    /// Writes the file `name` in a place's folder: with the owner, group and mode of `like`, which is the
    /// place's own file, and with that file's access control list; or as a new file with `mode` when there is
    /// none.
    [[nodiscard]] static Result<WaitingFile> write(const FilePlace& place, const std::string& name,
                                                   std::string_view bytes,
                                                   const std::optional<struct stat>& like, mode_t mode);

    WaitingFile(WaitingFile&& other) noexcept;
    ~WaitingFile();
    WaitingFile& operator=(WaitingFile&&) = delete;

    /// Gives the file its real name in one step, replacing a file of that name.
    [[nodiscard]] Status replace();
    /// Gives the file its real name unless another file has it, which is no failure. On a file system that
    /// cannot tell, another file is replaced, so look first.
    [[nodiscard]] Status takeFreeName();

  private:
    WaitingFile(const FilePlace& place, std::string name) : place_(&place), name_(std::move(name)) {}

    [[nodiscard]] Status create(mode_t mode);
    [[nodiscard]] Status fill(std::string_view bytes, const std::optional<struct stat>& like);
    [[nodiscard]] Status failure(int error) const;

    const FilePlace* place_;
    std::string name_;
    std::string temporary_; ///< its temporary name; empty when there is nothing to remove
    FileDescriptor file_;   ///< locked, so that other writers know that this one is alive
};

} // namespace platform
