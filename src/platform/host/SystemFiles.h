#pragma once

#include <string>
#include <utility>

namespace platform {

/// Where Brindle keeps, on the computer that it administers, what the computer has no file of its own for.
/// The folder is root's and everybody reads it.
class SystemFiles {
  public:
    /// `prefix` is a folder below which all of them lie; only tests give one.
    explicit SystemFiles(std::string prefix = {}) : prefix_(std::move(prefix)) {}

    [[nodiscard]] std::string folder() const { return prefix_ + "/var/lib/brindle"; }

    /// The directory's store: what the lines of passwd and group cannot hold, and the shares. It does not
    /// exist before the first change.
    [[nodiscard]] std::string storeFile() const { return folder() + "/directory.db"; }

    /// Whoever changes accounts holds it locked, so that one change follows another.
    [[nodiscard]] std::string lockFile() const { return folder() + "/lock"; }

    /// A change of an account that a killed run may have left half done; only root reads it.
    [[nodiscard]] std::string unfinishedChange() const { return folder() + "/unfinished"; }

    /// For what Samba keeps of an account, on its way back; only root reads it.
    [[nodiscard]] std::string sambaAccount() const { return folder() + "/smbpasswd"; }

    /// The settings of the AFP server.
    [[nodiscard]] std::string appleFileServer() const {
        return folder() + "/com.apple.AppleFileServer.plist";
    }

  private:
    std::string prefix_;
};

} // namespace platform
