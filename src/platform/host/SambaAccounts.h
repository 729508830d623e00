#pragma once

#include "EmbeddedRoot.h"

#include <string>
#include <string_view>
#include <utility>

namespace platform {

/// The accounts that the root's own file server knows: two lists, in the form of passwd and group, of the
/// computer's accounts and the directory's, which libnss_wrapper shows to Samba; and Samba's password
/// database. All below the root's samba folder. Each answer of an operation that can fail is empty, or one
/// line that says what failed and what to do.
class SambaAccounts {
  public:
    explicit SambaAccounts(EmbeddedRoot root) : root_(std::move(root)) {}

    /// True when the root has a folder for its own server (a root made elsewhere, or a store alone, has
    /// none).
    [[nodiscard]] bool exists() const;

    /// Samba's configuration for this root alone, whose [global] ends by including the root's smb.conf.
    /// Written anew when the root has moved.
    [[nodiscard]] std::string configurationFile() const;
    [[nodiscard]] std::string passwdFile() const; ///< NSS_WRAPPER_PASSWD
    [[nodiscard]] std::string groupFile() const;  ///< NSS_WRAPPER_GROUP
    /// libnss_wrapper.so as LD_PRELOAD takes it; empty when it is not installed.
    [[nodiscard]] static std::string wrapperLibrary();

    /// Makes the folder, the configuration and the account lists.
    [[nodiscard]] std::string make() const;
    /// Rewrites both account lists from the computer's accounts and the directory as they are now.
    [[nodiscard]] std::string writeAccountLists() const;
    /// Sets the password under which `user` (a user of the directory) connects to shares. The password
    /// reaches Samba over a pipe only.
    [[nodiscard]] std::string setPassword(const std::string& user, std::string_view password) const;
    /// Takes `user` out of the password database, where it need not be.
    [[nodiscard]] std::string removeUser(const std::string& user) const;

  private:
    EmbeddedRoot root_;
};

} // namespace platform
