#pragma once

#include "access/Accounts.h"
#include "access/Answer.h"
#include "access/FolderRights.h"
#include "access/ServerShare.h"
#include "model/SMBConf.h"

#include <map>
#include <optional>
#include <string>

namespace accesscheck {

/// The SMB server that the check is about.
struct Server {
    std::string file; ///< the path of its smb.conf, for the sentences
    /// True for an embedded root's own server: unless smb.conf says otherwise, it treats unknown users as the
    /// guest, and it starts with any security level.
    bool isOfRoot = false;
    bool starts = true; ///< false if it is known not to start with that file
};

/// The SMB server of this computer, or of a root, with smb.conf as `conf` read it. Finds out whether it
/// starts, which may take a few seconds.
[[nodiscard]] Server serverWith(const SMBConf& conf, bool isOfRoot);

/// Says what a user or the guest may do with a share, and what prevents the rest. It checks in the SMB
/// server's own order: the log-on, the share's settings, the folders down to the shared one. It only reads,
/// and caches the accounts and folders that it has read: make a new one for each question, or for many that
/// are asked at once.
class AccessCheck {
  public:
    /// `conf` and `accounts` must outlive it.
    AccessCheck(const SMBConf& conf, Accounts& accounts, Server server);

    /// Checks one share for one user. Without a `user` it checks for the guest, who logs on with no name.
    [[nodiscard]] Answer check(const std::string& share, const std::optional<std::string>& user);

  private:
    /// A check in progress: the answer so far, and the accounts that the server acts as.
    struct Visit;

    /// Each step returns false, with the reason in the visit, when access ends there.
    bool logOn(Visit& visit);
    bool findShare(Visit& visit);
    /// Why a section that only the server sees leaves open what the share is; none when there is none.
    [[nodiscard]] std::optional<Reason> hiddenReason(const std::string& share) const;
    /// Why the server does not start; none if it does, as far as is known.
    [[nodiscard]] std::optional<Reason> serverReason() const;
    /// Where the server may have a share that is not in the model; none when nowhere.
    [[nodiscard]] std::optional<Reason> reasonElsewhere(const std::string& share);
    bool enter(Visit& visit);
    bool becomeAccount(Visit& visit);
    bool walkTo(Visit& visit);
    void judgeFolder(Visit& visit);
    static void noteWhatIsNotJudged(const ServerShare& share, Answer* answer);

    [[nodiscard]] bool isReadOnly(const Visit& visit);
    [[nodiscard]] const std::optional<Account>& accountNamed(const std::string& name);
    [[nodiscard]] const platform::Result<FolderRights>& folder(const std::string& path);
    /// Whether the server takes a user whom it does not know for the guest.
    [[nodiscard]] bool mapsUnknownToGuest() const;
    bool mayLogOn(Visit& visit, LogOn logOn) const;
    [[nodiscard]] std::string section(const Visit& visit) const;
    /// What names the account in a command: a root's users are not this computer's.
    [[nodiscard]] std::string commandName(const Account& account) const;

    const SMBConf& conf_;
    Accounts& accounts_;
    Server server_;
    ServerShares shares_;
    std::map<std::string, std::optional<Account>> known_;
    std::map<std::string, LogOn> logOns_;
    std::map<std::string, platform::Result<FolderRights>> folders_;
    std::optional<Account> onlyActor_;
};

} // namespace accesscheck
