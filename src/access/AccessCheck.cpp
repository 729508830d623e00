#include "access/AccessCheck.h"

#include "access/FolderPath.h"
#include "model/ServerSettings.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/netinfo/LocalDomain.h"
#include "platform/posix/ShellWord.h"

#include <cerrno>
#include <utility>

#include <sys/statvfs.h>

namespace accesscheck {

namespace {

constexpr const char* standardGuest = "nobody";

/// The name that the sentences use: the user's, or a word for the guest.
std::string nameOf(const std::optional<std::string>& user) {
    return user ? *user : NSLocalizedString("the guest");
}

std::string editRemedy(const std::string& setting) {
    return stringWithFormat(NSLocalizedString("Change \"%@\" in the SMB server's settings file."), setting);
}

/// The command that gives the user, named by name or number, these rights to the folder.
std::string listRemedy(const std::string& user, const std::string& rights, const std::string& folder) {
    return "setfacl -m " + platform::shellWord("u:" + user + ":" + rights) + " " +
           platform::shellWord(folder);
}

/// How the share editor gives the account more.
std::string editorRemedy(RightsClass decidedBy) {
    return decidedBy == RightsClass::Owner
               ? NSLocalizedString("In the share editor, give the owner \"Read & Write\".")
           : decidedBy == RightsClass::Group
               ? NSLocalizedString("In the share editor, give the group \"Read & Write\".")
               : NSLocalizedString("In the share editor, give everyone \"Read & Write\".");
}

} // namespace

struct AccessCheck::Visit {
    Answer& answer;
    const ServerShare* share = nullptr;
    bool isGuest = false;
    Account account; ///< the account that the server looks up in lists of users
    Account actor;   ///< the account that it uses the file system as
    std::string path;

    bool refuse(std::string code, std::string text, std::string where, std::string remedy = {}) {
        if (!answer.reason) {
            answer.reason = Reason{std::move(code), std::move(text), std::move(where), std::move(remedy)};
        }
        return false;
    }
};

AccessCheck::AccessCheck(const SMBConf& conf, Accounts& accounts, Server server)
    : conf_(conf), accounts_(accounts), server_(std::move(server)), shares_(conf),
      onlyActor_(accounts.serverAccount()) {}

Answer AccessCheck::check(const std::string& share, const std::optional<std::string>& user) {
    Answer answer{share, user, {}, {}, {}};
    Visit visit{answer, nullptr, !user, {}, {}, {}};
    if (findShare(visit) && logOn(visit) && enter(visit) && becomeAccount(visit) && walkTo(visit)) {
        judgeFolder(visit);
    }
    if (!accounts_.problem().empty()) {
        // Who is missing may be in the directory all the same.
        Reason reason{"cannot-tell", NSLocalizedString("The directory cannot be read now."),
                      platform::Host::current().localDomain().storeFile(), ""};
        answer = {share, user, {}, std::move(reason), {}};
    }
    if (visit.share != nullptr) {
        noteWhatIsNotJudged(*visit.share, &answer);
    }
    return answer;
}

std::string AccessCheck::section(const Visit& visit) const {
    return stringWithFormat(NSLocalizedString("[%@] in %@"), visit.share->name(), server_.file);
}

const std::optional<Account>& AccessCheck::accountNamed(const std::string& name) {
    const auto found = known_.find(name);
    return found != known_.end() ? found->second
                                 : known_.emplace(name, accounts_.account(name)).first->second;
}

const platform::Result<FolderRights>& AccessCheck::folder(const std::string& path) {
    const auto found = folders_.find(path);
    return found != folders_.end() ? found->second
                                   : folders_.emplace(path, FolderRights::of(path)).first->second;
}

bool AccessCheck::findShare(Visit& visit) {
    const std::string& name = visit.answer.share;
    if (!conf_.unreadableReason().empty()) {
        return visit.refuse("unreadable-file",
                            stringWithFormat(NSLocalizedString("%@ cannot be read: %@."), server_.file,
                                             NSLocalizedString(conf_.unreadableReason())),
                            server_.file);
    }
    visit.share = isServerGlobal(name) || isServerHomes(name) ? nullptr : shares_.find(name);
    visit.answer.reason = visit.share == nullptr ? reasonElsewhere(name) : hiddenReason(name);
    if (visit.answer.reason) {
        return false;
    }
    if (visit.share == nullptr) {
        return visit.refuse(
            "not-published", stringWithFormat(NSLocalizedString("\"%@\" is not shared over SMB."), name),
            server_.file, NSLocalizedString("In the share editor, choose \"Shared\" for SMB."));
    }
    const ServerShare& share = *visit.share;
    if (auto reason = serverReason()) {
        visit.answer.reason = std::move(reason);
        return false;
    }
    if (share.flag("printable", false)) {
        return visit.refuse("printer",
                            stringWithFormat(NSLocalizedString("\"%@\" is a printer, not a folder."), name),
                            section(visit));
    }
    if (!share.flag("available", true)) {
        return visit.refuse(
            "not-available",
            stringWithFormat(NSLocalizedString("\"%@\" is switched off: \"available = no\"."), name),
            section(visit), editRemedy("available"));
    }
    if (!canBeReached(share.name())) {
        return visit.refuse("unreachable",
                            stringWithFormat(NSLocalizedString(nameNotReached), std::string(share.name())),
                            section(visit));
    }
    if (share.text("path").empty()) {
        return visit.refuse(
            "no-folder",
            stringWithFormat(
                NSLocalizedString("\"%@\" names no folder, so the SMB server does not offer it."), name),
            section(visit), editRemedy("path"));
    }
    return true;
}

bool AccessCheck::logOn(Visit& visit) {
    if (visit.isGuest) {
        return true;
    }
    const std::string& user = *visit.answer.user;
    const auto& account = accountNamed(user);
    if (!logOns_.contains(user)) {
        logOns_[user] = accounts_.logOn(user);
    }
    const LogOn logOn = logOns_[user];
    if (logOn == LogOn::NoAccount && mapsUnknownToGuest() && visit.share->flag("guest ok", false)) {
        // If guests are not allowed, the missing password is the reason.
        visit.isGuest = true;
        visit.answer.notes.push_back(stringWithFormat(
            NSLocalizedString(
                "%@ has no password for shares, and so connects as the guest (\"map to guest\")."),
            user));
        return true;
    }
    if (logOn == LogOn::Unknown) {
        visit.answer.notes.push_back(stringWithFormat(
            NSLocalizedString(
                "Whether %@ has a password for shares cannot be seen without administrator rights."),
            user));
    }
    if (!account) {
        return visit.refuse("no-such-user", stringWithFormat(NSLocalizedString("There is no user %@."), user),
                            user, NSLocalizedString("Add the user in the Users list."));
    }
    if (!mayLogOn(visit, logOn)) {
        return false;
    }
    visit.account = *account;
    return true;
}

bool AccessCheck::mayLogOn(Visit& visit, LogOn logOn) const {
    const std::string& user = *visit.answer.user;
    const std::string remedy =
        stringWithFormat(NSLocalizedString("In the Users list, choose %@ and \"Change Password…\"."), user);
    switch (logOn) {
    case LogOn::NoAccount:
        return visit.refuse("no-samba-user",
                            stringWithFormat(NSLocalizedString("%@ has no password for shares."), user), user,
                            remedy);
    case LogOn::Disabled:
        return visit.refuse("disabled",
                            stringWithFormat(NSLocalizedString("%@'s account for shares is disabled."), user),
                            user,
                            // A root's server has its own password database, which smbpasswd does not change.
                            server_.isOfRoot ? std::string() : "smbpasswd -e " + platform::shellWord(user));
    case LogOn::NoPassword:
        return visit.refuse(
            "no-password",
            stringWithFormat(NSLocalizedString("%@'s account for shares has no password."), user), user,
            remedy);
    default:
        return true;
    }
}

bool AccessCheck::enter(Visit& visit) {
    const ServerShare& share = *visit.share;
    if (visit.isGuest && !share.flag("guest ok", false)) {
        return visit.refuse(
            "guest-off", stringWithFormat(NSLocalizedString("Guests may not use \"%@\"."), share.name()),
            section(visit),
            NSLocalizedString("In the share editor, turn on \"Guests may use the SMB share\"."));
    }
    if (visit.isGuest || (share.flag("guest only", false) && share.flag("guest ok", false))) {
        const std::string_view guest = shares_.global().text("guest account");
        const std::string name = guest.empty() ? standardGuest : std::string(guest);
        const auto& account = accountNamed(name);
        if (!account) {
            return visit.refuse(
                "no-guest-account",
                stringWithFormat(NSLocalizedString("The account of the guest, %@, does not exist."), name),
                name, editRemedy("guest account"));
        }
        visit.account = *account;
        visit.isGuest = true;
    }
    const auto isListed = [&](const char* list) {
        return isNamed(share.list(list), visit.account, accounts_);
    };
    if (isListed("invalid users")) {
        return visit.refuse(
            "invalid-users",
            stringWithFormat(NSLocalizedString("\"invalid users\" keeps %@ out."), visit.account.name),
            section(visit), editRemedy("invalid users"));
    }
    if (!share.list("valid users").empty() && !isListed("valid users")) {
        return visit.refuse(
            "valid-users",
            stringWithFormat(NSLocalizedString("\"valid users\" does not name %@."), visit.account.name),
            section(visit), editRemedy("valid users"));
    }
    return true;
}

bool AccessCheck::becomeAccount(Visit& visit) {
    const ServerShare& share = *visit.share;
    visit.actor = visit.account;
    if (const std::string forced(share.text("force user")); !forced.empty()) {
        const auto& account = accountNamed(forced);
        if (!account) {
            return visit.refuse(
                "no-forced-user",
                stringWithFormat(NSLocalizedString("\"force user\" names %@, who does not exist."), forced),
                section(visit), editRemedy("force user"));
        }
        visit.actor = *account;
    }
    if (std::string forced(share.text("force group")); !forced.empty()) {
        const bool membersOnly = forced.front() == '+';
        forced.erase(0, forced.find_first_not_of("+@&"));
        const auto gid = accounts_.group(forced);
        if (!gid) {
            return visit.refuse(
                "no-forced-group",
                stringWithFormat(NSLocalizedString("\"force group\" names %@, which does not exist."),
                                 forced),
                section(visit), editRemedy("force group"));
        }
        if (!membersOnly || isNamed({"+" + forced}, visit.actor, accounts_)) {
            visit.actor.gid = *gid;
            visit.actor.groups.push_back(*gid);
        }
    }
    if (onlyActor_) {
        visit.actor = *onlyActor_;
    } else if (isNamed(share.list("admin users"), visit.account, accounts_)) {
        visit.actor.uid = 0;
    }
    return true;
}

bool AccessCheck::walkTo(Visit& visit) {
    const std::string written(withoutQuotes(visit.share->text("path")));
    const auto path = expandedPath(visit.share->text("path"), visit.share->name(), visit.actor.name);
    const auto isThereAsWritten = [&] { return !isTakenLiterally(written) && folder(written).isOk(); };
    if (!path && !isThereAsWritten()) {
        return visit.refuse(
            "cannot-tell",
            stringWithFormat(NSLocalizedString("The folder \"%@\" depends on who connects from where."),
                             std::string(visit.share->text("path"))),
            section(visit));
    }
    const auto missing = [&](const std::string& place) {
        if (isThereAsWritten()) {
            return visit.refuse("unreachable", stringWithFormat(NSLocalizedString(folderNotFound), written),
                                section(visit));
        }
        return visit.refuse(
            "folder-missing",
            stringWithFormat(NSLocalizedString("The shared folder %@ does not exist."), *path), place,
            "mkdir -p " + platform::shellWord(*path));
    };
    if (!path) {
        return missing(written);
    }
    FolderWalk walk(*path);
    std::optional<std::string> closed;
    while (const auto parent = walk.next()) {
        const auto& rights = folder(*parent);
        if (!rights.isOk()) {
            const int error = rights.status().systemError();
            return error == ENOENT || error == ENOTDIR || error == ELOOP
                       ? missing(*parent)
                       : visit.refuse("cannot-tell", rights.status().text(), *parent);
        }
        if (!S_ISDIR(rights->status().st_mode)) {
            return missing(*parent);
        }
        if (!walk.isAtEnd() && !closed && !rights->allow(visit.actor, maySearch)) {
            closed = parent;
        }
    }
    if (walk.error() != 0) {
        return missing(walk.place());
    }
    visit.path = walk.place();
    // The server looks at the folder as root when somebody connects, and as that user afterwards.
    visit.answer.may.connect = true;
    return !closed ||
           visit.refuse("no-search",
                        stringWithFormat(NSLocalizedString("%@ may not pass through the folder %@."),
                                         visit.actor.name, *closed),
                        *closed, listRemedy(commandName(visit.actor), "x", *closed));
}

bool AccessCheck::isReadOnly(const Visit& visit) {
    const ServerShare& share = *visit.share;
    bool isReadOnly = share.flag("read only", true);
    isReadOnly = isReadOnly || isNamed(share.list("read list"), visit.account, accounts_);
    return isReadOnly && !isNamed(share.list("write list"), visit.account, accounts_);
}

void AccessCheck::judgeFolder(Visit& visit) {
    const FolderRights& rights = *folder(visit.path);
    const Account& actor = visit.actor;
    Permissions& may = visit.answer.may;
    const RightsClass decidedBy = rights.decidedBy(actor);
    const std::string remedy = decidedBy == RightsClass::List
                                   ? listRemedy(commandName(actor), "rwx", visit.path)
                                   : editorRemedy(decidedBy);
    const auto refuse = [&](const char* code, const std::string& text, const std::string& how) {
        visit.refuse(code, stringWithFormat(text, actor.name, visit.path), visit.path, how);
    };
    may.read = rights.allow(actor, maySearch);
    may.list = rights.allow(actor, mayRead | maySearch);
    if (!may.list) {
        refuse(may.read ? "no-list" : "no-read",
               may.read ? NSLocalizedString("%@ may not list the folder %@.")
                        : NSLocalizedString("%@ may not read the folder %@."),
               remedy);
    }

    struct statvfs system {};

    const bool isOnReadOnlySystem =
        ::statvfs(visit.path.c_str(), &system) == 0 && (system.f_flag & ST_RDONLY) != 0;
    if (isReadOnly(visit)) {
        visit.refuse("read-only-share",
                     stringWithFormat(NSLocalizedString("\"%@\" is read only for %@."), visit.share->name(),
                                      nameOf(visit.answer.user)),
                     section(visit), editRemedy("read only"));
        return;
    }
    if (isOnReadOnlySystem) {
        visit.refuse("read-only-file-system",
                     stringWithFormat(
                         NSLocalizedString("The folder %@ is on a file system that is mounted read only."),
                         visit.path),
                     visit.path);
        return;
    }
    may.write = may.read;
    may.create = rights.allow(actor, mayWrite | maySearch);
    may.remove = may.create && (!rights.isSticky() || actor.uid == 0 || actor.uid == rights.status().st_uid);
    if (!may.create) {
        refuse("no-write", NSLocalizedString("%@ may not write to the folder %@."), remedy);
    } else if (!may.remove) {
        refuse("sticky", NSLocalizedString("%@ may delete only files of their own from the folder %@."),
               "chmod -t " + platform::shellWord(visit.path));
    }
}

} // namespace accesscheck
