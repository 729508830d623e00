#pragma once

#include "platform/posix/Status.h"
#include "platform/samba/SambaUser.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// The computer's own password database of Samba, which the smbd that it runs asks. Every operation waits for
/// other programs that use the database, ten seconds at most. Names are those of accounts of the computer.
class ComputerPasswords {
  public:
    /// Sets the password, which reaches Samba over its standard input only. Fails when Samba is not
    /// installed or does not take it.
    [[nodiscard]] static Status set(const std::string& user, std::string_view password);

    /// What Samba keeps of `user`, the password's hash in it, as one line that putBack() takes; empty when it
    /// keeps nothing, or is not installed. A secret.
    [[nodiscard]] static Result<std::string> accountOf(const std::string& user);

    /// Whether there is a database: to ask for somebody in one that is not there would make it.
    [[nodiscard]] static bool exists();

    /// How `user` stands in it; none when they are not in it, or there is no database. Fails as users() does.
    [[nodiscard]] static Result<std::optional<SambaUser>> user(const std::string& user);

    /// All whom Samba knows; nobody where there is no database. Fails when Samba is not installed, or does
    /// not show its database: only root may read it.
    [[nodiscard]] static Result<std::vector<SambaUser>> users();

    /// Makes Samba forget `user`, where the account must still exist. Ok when Samba does not know it.
    [[nodiscard]] static Status remove(const std::string& user);

    /// Has Samba keep such a line for the account `user` with this number. `file` is a path for a file of
    /// root's own, which is gone afterwards.
    [[nodiscard]] static Status putBack(std::string_view account, const std::string& user, unsigned uid,
                                        const std::string& file);
};

} // namespace platform
