#pragma once

#include "platform/posix/Process.h"
#include "platform/posix/Status.h"
#include "platform/samba/SambaPaths.h"
#include "platform/samba/SambaUser.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace platform {

class Store;

/// The accounts that the root's own file server knows: two lists, in the form of passwd and group, of the
/// directory's accounts and the computer's, which libnss_wrapper shows to Samba; and Samba's password
/// database. All below the server's private folder.
class SambaAccounts {
  public:
    /// `databaseLimit` is how long the password database may take for a change: other programs may hold it.
    explicit SambaAccounts(SambaPaths paths,
                           std::chrono::milliseconds databaseLimit = std::chrono::seconds(10))
        : paths_(std::move(paths)), databaseLimit_(databaseLimit) {}

    /// True when the root has a folder for its own server. Nothing below makes that folder but makeFolders()
    /// and what calls it.
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

    /// Makes the folders and the configuration, anew when the root has moved. Fails when one cannot be
    /// written.
    [[nodiscard]] Status makeFolders() const;
    /// The same, and the account lists from the directory as it is now. Waits for the directory's writers,
    /// and fails when they take too long or the directory cannot be read.
    [[nodiscard]] Status make() const;
    /// Rewrites both account lists, and the list of the Public folders that are shared, as the open
    /// transaction sees the directory, so that no other writer's change is lost. Fails when a list cannot be
    /// written or the store has failed.
    [[nodiscard]] Status writeAccountLists(Store& store) const;
    /// Fails with the reason when no user can have this password, whatever the directory and the database
    /// hold.
    [[nodiscard]] static Status checkPassword(std::string_view password);
    /// Sets the password under which `user`, who is in the account lists, connects to shares. It reaches
    /// Samba over its standard input only. Takes as long as Samba does: hold no store meanwhile. Fails when
    /// Samba or the wrapper is not installed, the password is too long, or Samba does not take it in time.
    [[nodiscard]] Status setPassword(const std::string& user, std::string_view password) const;
    /// How `user` stands in the password database; none when they are not in it. Fails when Samba or the
    /// wrapper is not installed, or the database cannot be read.
    [[nodiscard]] Result<std::optional<SambaUser>> user(const std::string& user) const;
    /// All who are in it. Fails as user() does.
    [[nodiscard]] Result<std::vector<SambaUser>> users() const;
    /// Takes `user` out of the password database, where it need not be. Fails when Samba or the wrapper is
    /// not installed, or Samba does not take it out.
    [[nodiscard]] Status removeUser(const std::string& user) const;

  private:
    struct Setting {
        std::string name;
        std::string value;
    };

    [[nodiscard]] std::string databaseFile() const;
    [[nodiscard]] std::string publicFoldersFile() const; ///< the Public folders that are shared
    /// Runs pdbedit on the root's database. Fails when it does not end in time.
    [[nodiscard]] Result<FinishedProcess> changeDatabase(const std::string& program,
                                                         const std::vector<std::string>& operation,
                                                         std::string_view input) const;
    [[nodiscard]] std::vector<Setting> ownSettings() const;
    [[nodiscard]] std::string configuration(bool includesSmbConf) const;

    SambaPaths paths_;
    std::chrono::milliseconds databaseLimit_;
};

} // namespace platform
