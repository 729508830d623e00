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

/// The SMB server that is asked about.
struct Server {
    std::string file; ///< its smb.conf, for sentences
    /// An embedded root's own: it takes whoever it does not know for the guest unless smb.conf says
    /// otherwise, and starts with any security level.
    bool isOfRoot = false;
};

/// Says what a user or the guest may do with a share, and what stands in the way, by the SMB server's own
/// order: the log-on, the share's settings, the folders down to the shared one. Reads only, and remembers
/// what it has read of accounts and folders: make one for each question, or for many asked at once.
class AccessCheck {
  public:
    /// `conf` and `accounts` must outlive it.
    AccessCheck(const SMBConf& conf, Accounts& accounts, Server server);

    /// `user` none: the guest, who logs on with no name.
    [[nodiscard]] Answer check(const std::string& share, const std::optional<std::string>& user);

  private:
    /// A check under way: the answer, and as whom the server acts.
    struct Visit;

    /// Each puts the reason into the visit and returns false when the way ends there.
    bool logOn(Visit& visit);
    bool findShare(Visit& visit);
    bool enter(Visit& visit);
    bool becomeAccount(Visit& visit);
    bool walkTo(Visit& visit);
    void judgeFolder(Visit& visit);
    void noteWhatIsNotJudged(Visit& visit) const;

    [[nodiscard]] bool isReadOnly(const Visit& visit);
    [[nodiscard]] const std::optional<Account>& accountNamed(const std::string& name);
    [[nodiscard]] const platform::Result<FolderRights>& folder(const std::string& path);
    [[nodiscard]] std::string section(const Visit& visit) const;

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
