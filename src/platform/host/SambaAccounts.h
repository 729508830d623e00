#pragma once

#include "platform/host/EmbeddedRoot.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

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

    /// Samba's configuration for this root. It includes the root's smb.conf and says the root's own settings
    /// once more behind it: smbd starts daemons that read the configuration and get none of its options.
    [[nodiscard]] std::string configurationFile() const;
    /// The root's own settings as what each of Samba's programs is told on its command line, where no line of
    /// a configuration can change them: its folders and password database, and nothing that would reach the
    /// computer's own accounts. Where the configuration cannot be read, Samba goes on with the computer's
    /// own, and would change the computer's own password database.
    [[nodiscard]] std::vector<std::string> privateOptions() const;
    /// The whole environment of Samba's programs, each "NAME=VALUE": the wrapper and the account lists.
    [[nodiscard]] std::vector<std::string> environment() const;
    [[nodiscard]] std::string passwdFile() const; ///< NSS_WRAPPER_PASSWD
    [[nodiscard]] std::string groupFile() const;  ///< NSS_WRAPPER_GROUP
    [[nodiscard]] std::string logFolder() const;
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
    struct Setting {
        std::string name;
        std::string value;
    };

    [[nodiscard]] std::string databaseFile() const;
    [[nodiscard]] std::vector<Setting> ownSettings() const;
    [[nodiscard]] std::string configuration(bool includesSmbConf) const;

    EmbeddedRoot root_;
};

} // namespace platform
