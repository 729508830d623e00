#pragma once

#include <deque>
#include <optional>
#include <string>
#include <string_view>

namespace accesscheck {

/// Returns a share's path with the server's variables for the share (%S) and the user (%u, %U) filled in,
/// without quotes around it and with one blank for several, as the server takes it; none when it contains any
/// other (smb.conf(5), "VARIABLE SUBSTITUTIONS").
[[nodiscard]] std::optional<std::string> expandedPath(std::string_view path, const std::string& share,
                                                      const std::string& user);

/// The folders that a process passes on its way to a folder, "/" first and the folder itself last. Links are
/// followed as the kernel does.
class FolderWalk {
  public:
    explicit FolderWalk(std::string_view path);

    /// Returns the next folder; none after the last one, or when the walk cannot go on: error() then says
    /// why.
    [[nodiscard]] std::optional<std::string> next();

    /// True when the folder that next() returned is the last one.
    [[nodiscard]] bool isAtEnd() const { return parts_.empty(); }

    /// The path that the walk has reached.
    [[nodiscard]] const std::string& place() const { return place_; }

    /// The errno that ended the walk; 0 when there was no error.
    [[nodiscard]] int error() const { return error_; }

  private:
    void queue(std::string_view path);

    std::deque<std::string> parts_;
    std::string place_;
    int links_ = 0;
    int error_ = 0;
};

} // namespace accesscheck
