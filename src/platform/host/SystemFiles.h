#pragma once

#include <string>
#include <utility>

namespace platform {

/// The files in which Brindle keeps, on the computer that it administers, what no file of the computer itself
/// can hold. Their folder belongs to root and is readable by everybody.
class SystemFiles {
  public:
    /// `prefix` is a folder below which all of them lie; only tests set it.
    explicit SystemFiles(std::string prefix = {}) : prefix_(std::move(prefix)) {}

    [[nodiscard]] std::string folder() const { return prefix_ + "/var/lib/brindle"; }

    /// The directory's store: the shares, and what the lines of passwd and group cannot hold. It does not
    /// exist before the first change.
    [[nodiscard]] std::string storeFile() const { return folder() + "/directory.db"; }

    /// Locked by whoever changes accounts, so that changes are made one after another.
    [[nodiscard]] std::string lockFile() const { return folder() + "/lock"; }

    /// Describes the account change in progress, in case it is killed half way. Only root can read it.
    [[nodiscard]] std::string unfinishedChange() const { return folder() + "/unfinished"; }

    /// Holds what Samba stores about an account while that is being restored. Only root can read it.
    [[nodiscard]] std::string sambaAccount() const { return folder() + "/smbpasswd"; }

    /// The settings of the AFP server.
    [[nodiscard]] std::string appleFileServer() const {
        return folder() + "/com.apple.AppleFileServer.plist";
    }

  private:
    std::string prefix_;
};

} // namespace platform
