#pragma once

#include "platform/posix/Status.h"
#include "platform/samba/SambaUser.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// Whether a server with this text of smb.conf certainly has its passwords in Samba's default place. False
/// when a setting names another place or kind of database, or settings are also read from elsewhere.
[[nodiscard]] bool usesDefaultPasswordDatabase(std::string_view smbConf);

/// Samba's password database on this computer, which the computer's own smbd uses. Every operation waits up
/// to ten seconds for other programs that use the database. Users are named by their accounts on the
/// computer.
class ComputerPasswords {
  public:
    /// Sets the password, which is passed to Samba only through its standard input. Fails when Samba is not
    /// installed or refuses the password.
    [[nodiscard]] static Status set(const std::string& user, std::string_view password);

    /// Whether there is a database. Looking somebody up when there is none would make one.
    [[nodiscard]] static bool exists();

    /// The entry of `user`; none when there is no entry or no database. Fails as users() does.
    [[nodiscard]] static Result<std::optional<SambaUser>> user(const std::string& user);

    /// All entries; empty when there is no database. Fails when Samba is not installed or cannot read its
    /// database, which only root may read.
    [[nodiscard]] static Result<std::vector<SambaUser>> users();

    /// What has to be removed from the database while the account `user` is renamed, renumbered or deleted,
    /// as one line for putBack(); a secret. Empty for tdbsam, Samba's usual kind of database, whose entries
    /// stay until follow() is called; also when nothing is stored about `user`, or Samba is not installed.
    /// Fails when other programs do not let go of the database.
    [[nodiscard]] static Result<std::string> accountToRemove(const std::string& user);

    /// Gives the entry of `user` the name that the account now has, or removes it when that is empty; all
    /// else that it holds stays. Does nothing when there is no entry, or the database is not of tdbsam's
    /// kind.
    [[nodiscard]] static Status follow(const std::string& user, const std::string& newName);

    /// Makes Samba forget which SID belongs to which number, with all else that it has cached. Otherwise it
    /// would refuse a user whose number has changed, for up to a week.
    [[nodiscard]] static Status forgetNumbers();

    /// Removes the entry of `user`, whose account must still exist. Ok when there is no entry.
    [[nodiscard]] static Status remove(const std::string& user);

    /// Makes Samba store a line of accountToRemove() for the account `user` with this number: the password,
    /// its date and the flags; what else the entry held is lost. `file` is the path of a temporary file that
    /// only root can read; it is removed afterwards.
    [[nodiscard]] static Status putBack(std::string_view account, const std::string& user, unsigned uid,
                                        const std::string& file);
};

} // namespace platform
