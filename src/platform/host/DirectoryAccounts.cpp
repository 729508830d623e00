#include "platform/host/DirectoryAccounts.h"

#include "platform/netinfo/AccountNumber.h"
#include "platform/netinfo/ni.h"

#include <vector>

#include <cerrno>

#include <grp.h>
#include <pwd.h>

namespace platform {

namespace {

constexpr int timeoutSeconds = 30;

/// Opens the store and finds the directory `path` in it. Returns null when it cannot be read; then only the
/// computer's own accounts count.
OwnedDomain openAt(const std::string& storeFile, const std::string& path, ni_id* id) {
    ni_domain* opened = nullptr;
    if (storeFile.empty()) {
        return nullptr;
    }
    if (ni_openfile(storeFile, &opened) != NI_OK) {
        return nullptr;
    }
    OwnedDomain domain(opened);
    ni_setabort(opened, 1);
    ni_setreadtimeout(opened, timeoutSeconds);
    if (ni_root(opened, id) != NI_OK || ni_pathsearch(opened, id, path.c_str()) != NI_OK) {
        return nullptr;
    }
    return domain;
}

std::optional<std::string> firstValue(ni_domain* domain, ni_id id, std::string_view property) {
    ni_namelist values;
    if (ni_lookupprop(domain, &id, property, &values) != NI_OK || values.ninl_val.empty()) {
        return std::nullopt;
    }
    return std::string(values.ninl_val.front());
}

std::optional<unsigned> numberOf(const std::string& storeFile, const std::string& path,
                                 std::string_view property, const std::string& name) {
    ni_id id;
    const auto domain = openAt(storeFile, path, &id);
    if (!domain || name.find('/') != std::string::npos ||
        ni_pathsearch(domain.get(), &id, name.c_str()) != NI_OK) {
        return std::nullopt;
    }
    bool valid = false;
    const unsigned number = accountNumber(firstValue(domain.get(), id, property).value_or(""), &valid);
    return valid ? std::optional(number) : std::nullopt;
}

/// Calls a reentrant account function, growing `buffer` as long as it is too small, as for a group with many
/// members. Returns whether the account was found.
template <class Entry, class Get, class Key>
bool lookUp(Get get, Key key, Entry& entry, std::vector<char>& buffer) {
    Entry* found = nullptr;
    buffer.resize(4096);
    while (get(key, &entry, buffer.data(), buffer.size(), &found) == ERANGE) {
        buffer.resize(buffer.size() * 4);
    }
    return found != nullptr;
}

} // namespace

std::optional<std::string> DirectoryAccounts::nameOf(const char* path, std::string_view property,
                                                     unsigned number, Names& names) const {
    ni_id id;
    const auto domain = openAt(storeFile_, path, &id);
    if (!domain) {
        return std::nullopt;
    }
    if (const auto stamp = stampOf(*domain); !stamp || stamp != stamp_) {
        users_.clear();
        groups_.clear();
        stamp_ = stamp;
    }
    const auto known = names.find(number);
    if (known != names.end()) {
        return known->second;
    }
    ni_idlist found;
    if (ni_lookup(domain.get(), &id, property, directoryNumber(number), &found) != NI_OK) {
        return std::nullopt;
    }
    std::optional<std::string> name;
    if (!found.niil_val.empty()) {
        name = firstValue(domain.get(), {found.niil_val.front(), 0}, "name");
        if (!name) {
            return name; // it could not be read, or has none: not worth remembering
        }
    }
    return names[number] = name;
}

std::optional<std::string> DirectoryAccounts::userName(uid_t uid) const {
    if (auto name = nameOf("/users", "uid", uid, users_)) {
        return name;
    }
    passwd entry{};
    std::vector<char> buffer;
    return lookUp(::getpwuid_r, uid, entry, buffer) ? std::optional<std::string>(entry.pw_name)
                                                    : std::nullopt;
}

std::optional<std::string> DirectoryAccounts::groupName(gid_t gid) const {
    if (auto name = nameOf("/groups", "gid", gid, groups_)) {
        return name;
    }
    group entry{};
    std::vector<char> buffer;
    return lookUp(::getgrgid_r, gid, entry, buffer) ? std::optional<std::string>(entry.gr_name)
                                                    : std::nullopt;
}

std::optional<uid_t> DirectoryAccounts::userId(const std::string& name) const {
    if (const auto number = numberOf(storeFile_, "/users", "uid", name)) {
        return number;
    }
    passwd entry{};
    std::vector<char> buffer;
    return lookUp(::getpwnam_r, name.c_str(), entry, buffer) ? std::optional(entry.pw_uid) : std::nullopt;
}

std::optional<gid_t> DirectoryAccounts::groupId(const std::string& name) const {
    if (const auto number = numberOf(storeFile_, "/groups", "gid", name)) {
        return number;
    }
    group entry{};
    std::vector<char> buffer;
    return lookUp(::getgrnam_r, name.c_str(), entry, buffer) ? std::optional(entry.gr_gid) : std::nullopt;
}

} // namespace platform
