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

    /// What Samba stores about `user`, including the password's hash, as one line for putBack(); empty when
    /// it stores nothing or is not installed. The line is a secret.
    [[nodiscard]] static Result<std::string> accountOf(const std::string& user);

    /// Whether there is a database. Looking somebody up when there is none would make one.
    [[nodiscard]] static bool exists();

    /// The entry of `user`; none when there is no entry or no database. Fails as users() does.
    [[nodiscard]] static Result<std::optional<SambaUser>> user(const std::string& user);

    /// All entries; empty when there is no database. Fails when Samba is not installed or cannot read its
    /// database, which only root may read.
    [[nodiscard]] static Result<std::vector<SambaUser>> users();

    /// Removes the entry of `user`, whose account must still exist. Ok when there is no entry.
    [[nodiscard]] static Status remove(const std::string& user);

    /// Makes Samba store a line of accountOf() for the account `user` with this number. `file` is the path of
    /// a temporary file that only root can read; it is removed afterwards.
    [[nodiscard]] static Status putBack(std::string_view account, const std::string& user, unsigned uid,
                                        const std::string& file);
};

} // namespace platform
