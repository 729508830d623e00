#include "access/ServerAccounts.h"

#include "directory/DirectoryView.h"
#include "platform/foundation/Host.h"
#include "platform/netinfo/AccountNumber.h"
#include "platform/posix/LetterCase.h"
#include "platform/samba/ComputerPasswords.h"

#include <algorithm>
#include <utility>

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

namespace accesscheck {

namespace {

/// Of the directory's accounts that are asked for: the rest are read at once, because opening the directory
/// of a computer reads all its account files.
constexpr int accountsReadOneByOne = 4;

std::optional<unsigned> numberIn(const DirectoryView::Record& record, std::string_view property) {
    bool isValid = false;
    const unsigned number = platform::accountNumber(firstValueOf(record, property), &isValid);
    return isValid ? std::optional(number) : std::nullopt;
}

std::optional<Account> accountIn(const DirectoryView::Record& record, const std::string& name) {
    const auto uid = numberIn(record, "uid");
    const auto gid = numberIn(record, "gid");
    return uid && gid ? std::optional(Account{name, *uid, *gid, {*gid}}) : std::nullopt;
}

std::optional<Account> computerAccount(const std::string& name) {
    const passwd* entry = ::getpwnam(name.c_str());
    return entry != nullptr
               ? std::optional(Account{entry->pw_name, entry->pw_uid, entry->pw_gid, {entry->pw_gid}})
               : std::nullopt;
}

std::vector<gid_t> computerGroups(const Account& account) {
    std::vector<gid_t> groups(16);
    int count = static_cast<int>(groups.size());
    while (::getgrouplist(account.name.c_str(), account.gid, groups.data(), &count) < 0) {
        groups.resize(std::max(groups.size() * 2, static_cast<std::size_t>(count)));
        count = static_cast<int>(groups.size());
    }
    groups.resize(static_cast<std::size_t>(count));
    return groups;
}

} // namespace

void ServerAccounts::noteFailure(const DirectoryView& directory) {
    if (directory.failure() != NI_OK && problem_.empty()) {
        problem_ = ni_error(directory.failure());
    }
}

std::optional<Account> ServerAccounts::directoryAccount(const std::string& name) {
    if (name.find('/') != std::string::npos) {
        return std::nullopt;
    }
    if (accountsAskedFor_ < accountsReadOneByOne) {
        ++accountsAskedFor_;
        const DirectoryView directory(platform::Host::current().services().localDomain);
        const auto record = directory.record("/users/" + name);
        noteFailure(directory);
        return record ? accountIn(*record, name) : std::nullopt;
    }
    if (!users_) {
        users_.emplace();
        const DirectoryView directory(platform::Host::current().services().localDomain);
        for (const DirectoryView::Record& record : directory.records("/users")) {
            for (const std::string& each : valuesOf(record, "name")) {
                users_->emplace(each, accountIn(record, each));
            }
        }
        noteFailure(directory);
    }
    const auto found = users_->find(name);
    return found == users_->end() ? std::nullopt : found->second;
}

std::optional<Account> ServerAccounts::eitherAccount(const std::string& name) {
    auto account = directoryAccount(name);
    return account ? account : computerAccount(name);
}

const ServerAccounts::Groups& ServerAccounts::groups() {
    if (groups_) {
        return *groups_;
    }
    groups_.emplace();
    const DirectoryView directory(platform::Host::current().services().localDomain);
    for (const DirectoryView::Record& record : directory.records("/groups")) {
        const std::string name = firstValueOf(record, "name");
        const auto gid = numberIn(record, "gid");
        if (name.empty() || !gid) {
            continue;
        }
        groups_->byName[name] = *gid;
        for (const std::string& member : valuesOf(record, "users")) {
            groups_->ofMember[member].push_back(*gid);
        }
    }
    noteFailure(directory);
    return *groups_;
}

void ServerAccounts::addGroupsOf(Account& account) {
    if (const auto found = groups().ofMember.find(account.name); found != groups().ofMember.end()) {
        account.groups.insert(account.groups.end(), found->second.begin(), found->second.end());
    }
    for (const gid_t gid : computerGroups(account)) {
        // If the directory has the group as well, its list of members is the one that counts.
        const struct group* entry = ::getgrgid(gid);
        if (entry != nullptr && !groups().byName.contains(entry->gr_name)) {
            account.groups.push_back(gid);
        }
    }
}

std::optional<Account> ServerAccounts::account(const std::string& name) {
    auto account = eitherAccount(name);
    if (!account) {
        account = eitherAccount(platform::lowercased(name));
    }
    if (account) {
        addGroupsOf(*account);
    }
    return account;
}

std::optional<gid_t> ServerAccounts::group(const std::string& name) {
    if (const auto found = groups().byName.find(name); found != groups().byName.end()) {
        return found->second;
    }
    const struct group* entry = ::getgrnam(name.c_str());
    return entry != nullptr ? std::optional(entry->gr_gid) : std::nullopt;
}

platform::Result<std::optional<platform::SambaUser>> ServerAccounts::sambaUser(const std::string& name) {
    if (!std::exchange(hasAskedForOne_, true)) {
        return root_ ? root_->user(name) : platform::ComputerPasswords::user(name);
    }
    if (!passwords_) {
        auto users = root_ ? root_->users() : platform::ComputerPasswords::users();
        std::map<std::string, platform::SambaUser> known;
        for (platform::SambaUser& user : users.isOk() ? *users : std::vector<platform::SambaUser>()) {
            known.emplace(platform::lowercased(user.name), std::move(user));
        }
        passwords_ = users.isOk()
                         ? platform::Result(std::move(known))
                         : platform::Result<std::map<std::string, platform::SambaUser>>(users.status());
    }
    if (!passwords_->isOk()) {
        return passwords_->status();
    }
    const auto found = (*passwords_)->find(platform::lowercased(name));
    return found == (*passwords_)->end() ? std::optional<platform::SambaUser>()
                                         : std::optional(found->second);
}

LogOn ServerAccounts::logOn(const std::string& name) {
    if (!root_ && ::geteuid() != 0) {
        return LogOn::Unknown;
    }
    const auto user = sambaUser(name);
    if (!user.isOk()) {
        return LogOn::Unknown;
    }
    if (!*user) {
        return LogOn::NoAccount;
    }
    return (*user)->isDisabled ? LogOn::Disabled : (*user)->hasPassword ? LogOn::Possible : LogOn::NoPassword;
}

std::optional<Account> ServerAccounts::serverAccount() {
    if (!root_ || ::geteuid() == 0) {
        return std::nullopt;
    }
    const passwd* entry = ::getpwuid(::geteuid());
    Account account{entry != nullptr ? entry->pw_name : std::to_string(::geteuid()), ::geteuid(), ::getegid(),
                    std::vector<gid_t>(static_cast<std::size_t>(::getgroups(0, nullptr)))};
    const int count = ::getgroups(static_cast<int>(account.groups.size()), account.groups.data());
    account.groups.resize(static_cast<std::size_t>(std::max(count, 0)));
    account.groups.push_back(account.gid);
    return account;
}

} // namespace accesscheck
