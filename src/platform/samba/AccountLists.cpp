#include "platform/samba/AccountLists.h"

#include "platform/netinfo/AccountNumber.h"
#include "platform/samba/UserShares.h"

#include <algorithm>
#include <set>

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>

namespace platform {

namespace {

/// `text` for a field that is only shown to people: characters that a field cannot hold become blanks.
std::string field(std::string_view text) {
    std::string result(text);
    for (char& character : result) {
        if (character == ':' || character == '\n') {
            character = ' ';
        }
    }
    return result;
}

bool canBeListed(std::string_view name) {
    return !name.empty() && name.find_first_of(":,\n") == std::string_view::npos;
}

std::string_view value(const RecordBlock& block, const RecordBlock::Record& record, std::string_view name) {
    const auto* property = block.property(record, name);
    return property == nullptr || property->valueCount == 0 ? std::string_view()
                                                            : block.values(*property).front();
}

std::string members(const RecordBlock& block, const RecordBlock::Record& record) {
    std::string names;
    const auto* users = block.property(record, "users");
    if (users == nullptr) {
        return names;
    }
    for (const auto user : block.values(*users)) {
        if (canBeListed(user)) {
            names += (names.empty() ? "" : ",") + std::string(user);
        }
    }
    return names;
}

void addUser(std::string& list, std::string_view name, unsigned uid, unsigned gid, std::string_view realName,
             std::string_view home, std::string_view shell) {
    list += std::string(name) + ":x:" + std::to_string(uid) + ":" + std::to_string(gid) + ":" +
            field(realName) + ":" + field(home) + ":" + field(shell) + "\n";
}

std::string passwdList(const RecordBlock& users) {
    std::string list;
    std::set<std::string, std::less<>> listed;
    for (const auto& record : users.records()) {
        const auto name = value(users, record, "name");
        bool hasUid = false;
        bool hasGid = false;
        const unsigned uid = accountNumber(value(users, record, "uid"), &hasUid);
        const unsigned gid = accountNumber(value(users, record, "gid"), &hasGid);
        if (canBeListed(name) && hasUid && hasGid && listed.emplace(name).second) {
            addUser(list, name, uid, gid, value(users, record, "realname"), value(users, record, "home"),
                    value(users, record, "shell"));
        }
    }
    ::setpwent();
    while (const passwd* entry = ::getpwent()) {
        if (listed.emplace(entry->pw_name).second) {
            addUser(list, entry->pw_name, entry->pw_uid, entry->pw_gid, entry->pw_gecos, entry->pw_dir,
                    entry->pw_shell);
        }
    }
    ::endpwent();
    return list;
}

bool canStandInSettings(std::string_view text) {
    return text.find_first_of("[]%;#") == std::string_view::npos && !text.ends_with('\\') &&
           std::ranges::none_of(text, [](unsigned char character) { return character < ' '; });
}

bool isOwnFolder(const std::string& folder, uid_t owner) {
    struct stat status {};

    return ::lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == owner;
}

std::string publicFolderSections(const RecordBlock& users) {
    std::string sections;
    for (const auto& record : users.records()) {
        const std::string name(value(users, record, "name"));
        const std::string home(value(users, record, "home"));
        const std::string folder = home + "/Public";
        bool hasUid = false;
        const uid_t uid = accountNumber(value(users, record, "uid"), &hasUid);
        if (value(users, record, "sharedDir") == "Public" && canBeListed(name) && canStandInSettings(name) &&
            hasUid && canStandInSettings(folder) && isOwnFolder(home, uid) && isOwnFolder(folder, uid)) {
            sections += "[" + publicShareName(name) + "]\n  path = " + folder + "\n  read only = yes\n";
        }
    }
    return sections;
}

std::string groupList(const RecordBlock& groups) {
    std::string list;
    std::set<std::string, std::less<>> listed;
    for (const auto& record : groups.records()) {
        const auto name = value(groups, record, "name");
        bool hasGid = false;
        const unsigned gid = accountNumber(value(groups, record, "gid"), &hasGid);
        if (canBeListed(name) && hasGid && listed.emplace(name).second) {
            list += std::string(name) + ":x:" + std::to_string(gid) + ":" + members(groups, record) + "\n";
        }
    }
    ::setgrent();
    while (const group* entry = ::getgrent()) {
        if (!listed.emplace(entry->gr_name).second) {
            continue;
        }
        list += std::string(entry->gr_name) + ":x:" + std::to_string(entry->gr_gid) + ":";
        for (char** member = entry->gr_mem; *member != nullptr; ++member) {
            list += (member == entry->gr_mem ? "" : ",") + std::string(*member);
        }
        list += "\n";
    }
    ::endgrent();
    return list;
}

} // namespace

AccountLists accountLists(const RecordBlock& users, const RecordBlock& groups) {
    return {passwdList(users), groupList(groups), publicFolderSections(users)};
}

} // namespace platform
