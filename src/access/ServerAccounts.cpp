#include "access/ServerAccounts.h"

#include "platform/netinfo/AccountNumber.h"
#include "platform/netinfo/ni.h"
#include "platform/posix/LetterCase.h"
#include "platform/samba/ComputerPasswords.h"

#include <algorithm>
#include <utility>

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

namespace accesscheck {

namespace {

/// The record at `path`, with the connection that it belongs to. Without a record there is no connection.
struct Record {
    platform::OwnedDomain domain;
    ni_id id;
    ni_status failure = NI_OK; ///< why the directory could not be read; NI_OK when it could

    /// Returns whether the directory has what was asked for, and remembers when it could not tell.
    bool isThere(ni_status status) {
        // A record that has been deleted meanwhile is missing, too.
        const bool isMissing = status == NI_NODIR || status == NI_NOPROP || status == NI_BADID;
        failure = failure == NI_OK && !isMissing ? status : failure;
        return status == NI_OK;
    }

    [[nodiscard]] std::optional<std::string> value(std::string_view property) {
        ni_namelist values;
        return isThere(ni_lookupprop(domain.get(), &id, property, &values)) && !values.ninl_val.empty()
                   ? std::optional<std::string>(values.ninl_val.front())
                   : std::nullopt;
    }

    [[nodiscard]] std::optional<unsigned> number(std::string_view property) {
        bool isValid = false;
        const unsigned number = platform::accountNumber(value(property).value_or(""), &isValid);
        return isValid ? std::optional(number) : std::nullopt;
    }
};

Record recordAt(const std::string& path) {
    Record record;
    if (!record.isThere(platform::openLocalRecord(path, &record.domain, &record.id))) {
        record.domain.reset();
    }
    return record;
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

void ServerAccounts::noteFailure(std::int32_t status) {
    if (status != NI_OK && problem_.empty()) {
        problem_ = ni_error(status);
    }
}

std::optional<Account> ServerAccounts::directoryAccount(const std::string& name) {
    Record record = name.find('/') == std::string::npos ? recordAt("/users/" + name) : Record();
    std::optional<Account> account;
    if (record.domain) {
        const auto uid = record.number("uid");
        const auto gid = record.number("gid");
        if (uid && gid) {
            account = Account{name, *uid, *gid, {*gid}};
        }
    }
    noteFailure(record.failure);
    return account;
}

std::optional<Account> ServerAccounts::eitherAccount(const std::string& name) {
    auto account = directoryAccount(name);
    return account ? account : computerAccount(name);
}

const std::map<std::string, ServerAccounts::Group>& ServerAccounts::groups() {
    if (groups_) {
        return *groups_;
    }
    groups_.emplace();
    Record place = recordAt("/groups");
    ni_idlist children;
    if (!place.domain || !place.isThere(ni_children(place.domain.get(), &place.id, &children))) {
        noteFailure(place.failure);
        return *groups_;
    }
    for (const std::uint32_t child : children.niil_val) {
        place.id = {child};
        const auto name = place.value("name");
        const auto gid = place.number("gid");
        if (!name || !gid) {
            continue;
        }
        ni_namelist members;
        Group& group = (*groups_)[*name];
        group.gid = *gid;
        if (place.isThere(ni_lookupprop(place.domain.get(), &place.id, "users", &members))) {
            group.members.assign(members.ninl_val.begin(), members.ninl_val.end());
        }
    }
    noteFailure(place.failure);
    return *groups_;
}

void ServerAccounts::addGroupsOf(Account& account) {
    for (const auto& [name, group] : groups()) {
        if (std::ranges::find(group.members, account.name) != group.members.end()) {
            account.groups.push_back(group.gid);
        }
    }
    for (const gid_t gid : computerGroups(account)) {
        // If the directory has the group as well, its list of members is the one that counts.
        const struct group* entry = ::getgrgid(gid);
        if (entry != nullptr && !groups().contains(entry->gr_name)) {
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
    if (const auto found = groups().find(name); found != groups().end()) {
        return found->second.gid;
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
