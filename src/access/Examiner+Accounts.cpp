#include "access/Examiner.h"
#include "directory/DirectoryView.h"
#include "platform/foundation/Computer.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "platform/netinfo/AccountLines.h"
#include "platform/netinfo/AccountNumber.h"
#include "platform/netinfo/LocalDomain.h"
#include "platform/posix/LetterCase.h"
#include "platform/posix/ShellWord.h"
#include "platform/samba/ComputerPasswords.h"
#include "platform/samba/InstalledSamba.h"
#include "platform/samba/SambaAccounts.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <ranges>
#include <set>

#include <unistd.h>

namespace accesscheck {

namespace {

/// At most this many names are written out in a finding about several users.
constexpr std::size_t mostNames = 8;

/// True for a user who exists only to connect to shares.
bool isForSharing(const std::string& shell) {
    return shell.ends_with("/nologin") || shell.ends_with("/false") || shell == "/dev/null";
}

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (std::size_t index = 0; index < std::min(names.size(), mostNames); ++index) {
        text += (index == 0 ? "" : ", ") + names[index];
    }
    return names.size() > mostNames ? text + ", …" : text;
}

bool exists(const std::string& file) {
    std::error_code ignored; // a path that cannot be looked at counts as missing
    return std::filesystem::exists(file, ignored);
}

/// False for a path that cannot be looked at: what is below a closed home may well exist.
bool isMissing(const std::string& file) {
    std::error_code ignored;
    return std::filesystem::status(file, ignored).type() == std::filesystem::file_type::not_found;
}

/// False for an account of this computer whose Public folder is never offered, as a system account's.
bool mayHavePublicFolder(const std::string& user) {
    const auto& computer = platform::Host::current().services().computer;
    return !computer || computer->whyNoPublicFolder(user).empty();
}

} // namespace

void Examiner::examineAccounts() {
    readAccounts();
    std::map<std::string, std::string> known;
    for (const User& user : users_) {
        examineUser(user);
        const auto [before, isNew] = known.emplace(platform::lowercased(user.name), user.name);
        if (!isNew) {
            find({.code = "name-case",
                  .text = stringWithFormat(NSLocalizedString("The users \"%@\" and \"%@\" differ only in "
                                                             "case: the SMB server cannot tell them apart."),
                                           before->second, user.name),
                  .where = user.name,
                  .remedy = command({"users", "remove", user.name}),
                  .user = user.name});
        }
    }
    for (const Group& group : groups_) {
        bool isNumber = false;
        static_cast<void>(platform::accountNumber(group.gid, &isNumber));
        if (!isNumber) {
            find(
                {.code = "half-made-group",
                 .text = stringWithFormat(
                     NSLocalizedString("The group \"%@\" has no number: it was only half made."), group.name),
                 .where = "/groups/" + group.name,
                 .remedy = command({"groups", "remove", group.name})});
        }
    }
    examineHalfMade();
    examinePasswords();
}

void Examiner::examineUser(const User& user) {
    bool hasUid = false;
    bool hasGid = false;
    static_cast<void>(platform::accountNumber(user.uid, &hasUid));
    static_cast<void>(platform::accountNumber(user.gid, &hasGid));
    if (!hasUid || !hasGid) {
        find({.code = "half-made-user",
              .text = stringWithFormat(
                  NSLocalizedString("The user \"%@\" has no number or no group: it was only half made."),
                  user.name),
              .where = "/users/" + user.name,
              .remedy = deleteCommand("/users/" + user.name),
              .user = user.name});
    }
    const std::string folder = user.home + "/Public";
    if (user.sharedFolder == "Public" && isMissing(folder) && mayHavePublicFolder(user.name)) {
        find(
            {.code = "public-folder-gone",
             .text = stringWithFormat(
                 NSLocalizedString("The Public folder of \"%@\" is set to be shared, but %@ does not exist."),
                 user.name, folder),
             .where = folder,
             .remedy = command({"public", "off", user.name}),
             .user = user.name});
    }
}

void Examiner::examineHalfMade() {
    const auto& domain = platform::Host::current().localDomain();
    if (!domain.accountFiles()) {
        return; // a root's accounts are wholly in the store, which was checked above
    }
    const std::string file = domain.storeFile();
    std::set<std::string> users;
    std::set<std::string> groups;
    std::ranges::transform(users_, std::inserter(users, users.end()), &User::name);
    std::ranges::transform(groups_, std::inserter(groups, groups.end()), &Group::name);
    const DirectoryView store(file);
    const auto compare = [&](bool isOfUsers, const std::set<std::string>& known, const char* code,
                             const std::string& text) {
        for (const std::string& name : store.names(isOfUsers ? "/users" : "/groups")) {
            if (!known.contains(name)) {
                find({.level = Finding::Level::Notice,
                      .code = code,
                      .text = stringWithFormat(text, name),
                      .where = file,
                      .remedy = deleteCommand((isOfUsers ? "/users/" : "/groups/") + name),
                      .user = isOfUsers ? std::optional(name) : std::nullopt});
            }
        }
    };
    compare(true, users, "half-made-user",
            NSLocalizedString("Brindle keeps something of the user \"%@\", whom the computer does not "
                              "have: it was only half made, or deleted elsewhere."));
    compare(false, groups, "half-made-group",
            NSLocalizedString("Brindle keeps something of the group \"%@\", which the computer does not "
                              "have: it was only half made, or deleted elsewhere."));
    const std::string unfinished = std::filesystem::path(file).parent_path() / "unfinished";
    if (exists(unfinished)) {
        find({.code = "unfinished-change",
              .text = NSLocalizedString("A change of an account was interrupted half way."),
              .where = unfinished,
              .remedy = NSLocalizedString("It is completed with the next change of an account.")});
    }
}

void Examiner::findNoLogOn(const User& user, bool isDisabled) {
    find({.code = isDisabled ? "disabled" : "no-password",
          .text = stringWithFormat(
              isDisabled ? NSLocalizedString("The user \"%@\" is disabled in Samba's password database.")
                         : NSLocalizedString("The user \"%@\" has no Samba password and cannot connect."),
              user.name),
          .where = user.name,
          .remedy = isDisabled && !host_.root ? "smbpasswd -e " + platform::shellWord(user.name)
                                              : command({"users", "password", user.name}),
          .user = user.name});
}

std::string Examiner::passwordCommand(const std::vector<std::string>& users) const {
    if (users.size() == 1) {
        return command({"users", "password", users.front()});
    }
    std::string loop = "for user in";
    for (const std::string& user : users | std::views::take(mostNames)) {
        loop += " " + platform::shellWord(user);
    }
    return loop + "; do " + command({"users", "password"}) + " \"$user\"; done";
}

void Examiner::examinePasswords() {
    if (!host_.root && ::geteuid() != 0) {
        found_.notes.push_back(
            NSLocalizedString("Samba's passwords were not examined: only root may read them."));
        return;
    }
    if (platform::sambaCommand("pdbedit").empty()) {
        return; // the server's findings say that Samba is not installed
    }
    const auto database =
        host_.root ? platform::SambaAccounts(*host_.root).users() : platform::ComputerPasswords::users();
    if (!database.isOk()) {
        found_.notes.push_back(database.status().text());
        return;
    }
    std::map<std::string, const platform::SambaUser*> known;
    for (const platform::SambaUser& user : *database) {
        known.emplace(platform::lowercased(user.name), &user);
    }
    const platform::AccountLimits limits = platform::readAccountLimits();
    std::vector<std::string> without;
    for (const User& user : users_) {
        if (const auto entry = known.find(platform::lowercased(user.name)); entry != known.end()) {
            if (!entry->second->hasPassword || entry->second->isDisabled) {
                findNoLogOn(user, entry->second->isDisabled);
            }
            known.erase(entry);
            continue;
        }
        bool hasUid = false;
        const unsigned uid = platform::accountNumber(user.uid, &hasUid);
        const bool isPerson = hasUid && uid >= limits.lowestUser && uid <= limits.highestUser;
        if (isPerson && isForSharing(user.shell)) {
            findNoLogOn(user, false);
        } else if (isPerson) {
            without.push_back(user.name);
        }
    }
    if (!without.empty()) {
        find({.level = Finding::Level::Notice,
              .code = "users-without-password",
              .text = stringWithFormat(
                  NSLocalizedString("Users who have no Samba password and cannot connect over SMB: %@ (%@)."),
                  std::to_string(without.size()), joined(without)),
              .where = NSLocalizedString("Samba's password database"),
              .remedy = passwordCommand(without)});
    }
    for (const auto& [name, user] : known) {
        if (hasDirectory_) {
            find({.level = Finding::Level::Notice,
                  .code = "password-without-user",
                  .text = stringWithFormat(
                      NSLocalizedString("Samba has a password for \"%@\", and there is no such user."),
                      user->name),
                  .where = NSLocalizedString("Samba's password database"),
                  .remedy = host_.root ? std::string() : "pdbedit -x " + platform::shellWord(user->name)});
        }
    }
}

} // namespace accesscheck
