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

/// The accounts of the root's own file server: two lists, in the form of passwd and group, of the accounts in
/// the directory and on the computer, which libnss_wrapper shows to Samba; and Samba's password database. All
/// lie in the server's private folder.
class SambaAccounts {
  public:
    /// `databaseLimit` is how long pdbedit may take, because other programs may hold the database.
    explicit SambaAccounts(SambaPaths paths,
                           std::chrono::milliseconds databaseLimit = std::chrono::seconds(10))
        : paths_(std::move(paths)), databaseLimit_(databaseLimit) {}

    /// True when the root has a folder for its own server. Of the operations below only makeFolders() and
    /// make() create it.
    [[nodiscard]] bool exists() const;

    /// Samba's configuration for this root. It includes the root's smb.conf and repeats the root's own
    /// settings after it, because smbd starts daemons that read the configuration but do not get smbd's
    /// options.
    [[nodiscard]] std::string configurationFile() const;
    /// The root's own settings (its folders and password database, and nothing that could reach the
    /// computer's own accounts) as options for each of Samba's programs, because no line of a configuration
    /// overrides an option. Without them a program that cannot read the root's configuration would go on with
    /// the computer's own, and change the computer's password database.
    [[nodiscard]] std::vector<std::string> privateOptions() const;
    /// The whole environment of Samba's programs, each as "NAME=VALUE": PATH, the wrapper and the account
    /// lists.
    [[nodiscard]] std::vector<std::string> environment() const;
    [[nodiscard]] std::string passwdFile() const; ///< NSS_WRAPPER_PASSWD
    [[nodiscard]] std::string groupFile() const;  ///< NSS_WRAPPER_GROUP
    [[nodiscard]] std::string logFolder() const;
    /// libnss_wrapper.so as a value for LD_PRELOAD; empty when it is not installed.
    [[nodiscard]] static std::string wrapperLibrary();

    /// Makes the folders and the configuration; rewrites the configuration if the root has moved. Fails when
    /// one of them cannot be written.
    [[nodiscard]] Status makeFolders() const;
    /// The same, and makes the account lists from the current directory. Waits for the directory's writers;
    /// also fails when they take too long or the directory cannot be read.
    [[nodiscard]] Status make() const;
    /// Rewrites both account lists and the list of shared Public folders from the directory as the open
    /// transaction of `store` sees it, so that no other writer's change is lost. Fails when a list cannot be
    /// written or the store has failed.
    [[nodiscard]] Status writeAccountLists(Store& store) const;
    /// Fails, saying why, when the password is one that Samba cannot take for any user.
    [[nodiscard]] static Status checkPassword(std::string_view password);
    /// Fails when something that the password database needs is not installed, and says what.
    [[nodiscard]] static Status checkPrograms();
    /// Sets the password with which `user`, who must be in the account lists, connects to shares. It is
    /// passed to Samba only through its standard input. Do not hold a Store meanwhile, because Samba may take
    /// long. Fails when Samba or the wrapper is not installed, checkPassword() fails, or Samba does not
    /// accept the password in time.
    [[nodiscard]] Status setPassword(const std::string& user, std::string_view password) const;
    /// The entry of `user` in the password database, or none. Fails when Samba or the wrapper is not
    /// installed, or the database cannot be read.
    [[nodiscard]] Result<std::optional<SambaUser>> user(const std::string& user) const;
    /// All entries of the password database. Fails as user() does.
    [[nodiscard]] Result<std::vector<SambaUser>> users() const;
    /// Removes the entry of `user` from the password database, if there is one. Fails when Samba or the
    /// wrapper is not installed, or Samba does not remove it.
    [[nodiscard]] Status removeUser(const std::string& user) const;

  private:
    struct Setting {
        std::string name;
        std::string value;
    };

    [[nodiscard]] std::string databaseFile() const;
    [[nodiscard]] std::string publicFoldersFile() const; ///< the sections of the shared Public folders
    /// Runs `program` (pdbedit) on the root's database. Fails when it does not end in time.
    [[nodiscard]] Result<FinishedProcess> changeDatabase(const std::string& program,
                                                         const std::vector<std::string>& operation,
                                                         std::string_view input) const;
    [[nodiscard]] std::vector<Setting> ownSettings() const;
    [[nodiscard]] std::string configuration(bool includesSmbConf) const;

    SambaPaths paths_;
    std::chrono::milliseconds databaseLimit_;
};

} // namespace platform
