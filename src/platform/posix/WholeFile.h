#pragma once

#include "platform/posix/FileDescriptor.h"
#include "platform/posix/Status.h"

#include <optional>
#include <string>
#include <string_view>

#include <sys/stat.h>

namespace platform {

// Files are written whole: a temporary file beside the target, created exclusively, is filled, flushed to the
// disk and renamed over the target, and its folder is flushed. A reader finds the old text or the new one,
// never a part. The temporary files of writers that were killed are removed by the next writer in the folder.

/// What happens to a symbolic link at the end of a path that is written to.
enum class LinkRule {
    Replace, ///< a file takes the link's place; what the link leads to stays as it is
    Follow   ///< the link stays, and the file that it names, which need not exist, is written
};

/// The rules under which a file is written.
struct WholeFileRules {
    mode_t mode = 0644; ///< of a new file, before the process's umask
    LinkRule links = LinkRule::Replace;
    /// The new file takes the owner, group and mode of the one that it replaces, which must be a regular
    /// file.
    bool keepsRights = false;
};

/// Writes `bytes` to the file at `path`. On failure the file is as it was, and no temporary file is left.
[[nodiscard]] Status writeWholeFile(const std::string& path, std::string_view bytes,
                                    const WholeFileRules& rules = {});

/// A file's place: its folder, held open, and its name there, so that all steps of a write stay in that
/// folder even when a path to it changes meanwhile. For writes of several files that belong together.
class FilePlace {
  public:
    /// The place of the file that writing to `path` would write. Fails when there is no such folder.
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

/// A file that is whole on the disk under a temporary name and waits to be given its own. It is removed
/// unless it gets it. Its place must outlive it.
class WaitingFile {
  public:
    /// Writes the file `name` of a place's folder. It has the owner, group and mode of `like`; where there is
    /// none, those of a new file that is made with `mode`.
    [[nodiscard]] static Result<WaitingFile> write(const FilePlace& place, const std::string& name,
                                                   std::string_view bytes,
                                                   const std::optional<struct stat>& like, mode_t mode);

    WaitingFile(WaitingFile&& other) noexcept;
    ~WaitingFile();
    WaitingFile& operator=(WaitingFile&&) = delete;

    /// Takes the name's place in one step.
    [[nodiscard]] Status replace();
    /// Takes the name unless a file has it already, which is no failure. On a file system that cannot tell,
    /// it replaces: look first.
    [[nodiscard]] Status takeFreeName();

  private:
    WaitingFile(const FilePlace& place, std::string name) : place_(&place), name_(std::move(name)) {}

    [[nodiscard]] Status create(mode_t mode);
    [[nodiscard]] Status fill(std::string_view bytes, const std::optional<struct stat>& like);
    [[nodiscard]] Status failure(int error) const;

    const FilePlace* place_;
    std::string name_;
    std::string temporary_; ///< the name that it has; empty when there is none to remove
    FileDescriptor file_;   ///< locked, which tells other writers that this one is alive
};

} // namespace platform
