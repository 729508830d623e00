#pragma once

#include "EmbeddedRoot.h"

#include <string>
#include <string_view>
#include <utility>

namespace platform {

class Store;

/// The accounts that the root's own file server knows: two lists, in the form of passwd and group, of the
/// directory's accounts and the computer's, which libnss_wrapper shows to Samba; and Samba's password
/// database. All below the root's samba folder. Each operation that can fail answers nothing, or one line
/// that says what failed and what to do.
class SambaAccounts {
  public:
    explicit SambaAccounts(EmbeddedRoot root) : root_(std::move(root)) {}

    /// True when the root has a folder for its own server.
    [[nodiscard]] bool exists() const;

    /// Samba's configuration for this root, whose [global] ends by including the root's smb.conf.
    [[nodiscard]] std::string configurationFile() const;
    [[nodiscard]] std::string passwdFile() const; ///< NSS_WRAPPER_PASSWD
    [[nodiscard]] std::string groupFile() const;  ///< NSS_WRAPPER_GROUP
    /// libnss_wrapper.so as LD_PRELOAD takes it; empty when it is not installed.
    [[nodiscard]] static std::string wrapperLibrary();

    /// Makes the folders and the configuration, anew when the root has moved.
    [[nodiscard]] std::string makeFolders() const;
    /// The same, and the account lists from the directory as it is now. Waits for the directory's writers.
    [[nodiscard]] std::string make() const;
    /// Rewrites both account lists as the open transaction sees the directory, so that no other writer's
    /// change is lost.
    [[nodiscard]] std::string writeAccountLists(Store& store) const;
    /// Sets the password under which `user`, a user of the directory, connects to shares. It reaches Samba
    /// over its standard input only. `store` keeps writers from deleting the user meanwhile.
    [[nodiscard]] std::string setPassword(Store& store, const std::string& user,
                                          std::string_view password) const;
    /// Takes `user` out of the password database, where it need not be.
    [[nodiscard]] std::string removeUser(const std::string& user) const;

  private:
    [[nodiscard]] std::string databaseFile() const;
    [[nodiscard]] std::string configuration() const;

    EmbeddedRoot root_;
};

} // namespace platform
