#include "platform/host/DirectoryAccounts.h"

#include "platform/netinfo/AccountNumber.h"
#include "platform/netinfo/StoreWait.h"
#include "platform/netinfo/ni.h"

#include <cerrno>
#include <set>
#include <vector>

#include <grp.h>
#include <pwd.h>

namespace platform {

namespace {

std::optional<std::string> firstValue(ni_domain* domain, ni_id id, std::string_view property) {
    ni_namelist values;
    if (ni_lookupprop(domain, &id, property, &values) != NI_OK || values.ninl_val.empty()) {
        return std::nullopt;
    }
    return std::string(values.ninl_val.front());
}

/// Says why the directory could not be read over `domain`, which is null when it could not be opened.
Status unreadable(const std::string& storeFile, const OwnedDomain& domain) {
    const std::string problem = domain ? directoryProblem() : storeOpeningProblem(storeFile);
    return Status::failure("cannot read the directory", shownStore(storeFile),
                           problem.empty() ? "check its disk, or restore it from a copy" : problem);
}

/// The number of the account `name` in `directory`; none when it has no such account. Fails when that cannot
/// be read, or is no number.
Result<std::optional<unsigned>> numberOf(const std::string& storeFile, const std::string& directory,
                                         const std::string& property, const std::string& name) {
    if (storeFile.empty() || name.find('/') != std::string::npos) {
        return std::optional<unsigned>();
    }
    OwnedDomain domain;
    ni_id id;
    ni_status status = openRecord(storeFile, directory + "/" + name, &domain, &id);
    if (status == NI_NODIR) {
        return std::optional<unsigned>();
    }
    ni_namelist values;
    if (status == NI_OK) {
        status = ni_lookupprop(domain.get(), &id, property, &values);
    }
    if (status != NI_OK && status != NI_NOPROP) {
        return unreadable(storeFile, domain);
    }
    bool valid = false;
    const std::string_view text = values.ninl_val.empty() ? "" : values.ninl_val.front();
    const unsigned number = accountNumber(text, &valid);
    return valid ? Result(std::optional(number))
                 : Status::failure("cannot use", name,
                                   "its " + property +
                                       " in the directory is missing or not a number; set that first");
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
    OwnedDomain domain;
    if (storeFile_.empty() || openRecord(storeFile_, path, &domain, &id) != NI_OK) {
        return std::nullopt; // the computer's own accounts have names, too
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
    // A user may have typed a number that the directory itself would write as a negative one.
    for (const std::string& text : std::set{directoryNumber(number), std::to_string(number)}) {
        if (ni_lookup(domain.get(), &id, property, text, &found) != NI_OK) {
            return std::nullopt;
        }
    }
    std::optional<std::string> name;
    if (!found.niil_val.empty()) {
        name = firstValue(domain.get(), {found.niil_val.front()}, "name");
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

Result<std::optional<uid_t>> DirectoryAccounts::userId(const std::string& name) const {
    if (auto number = numberOf(storeFile_, "/users", "uid", name); !number.isOk() || *number) {
        return number;
    }
    passwd entry{};
    std::vector<char> buffer;
    return lookUp(::getpwnam_r, name.c_str(), entry, buffer) ? std::optional(entry.pw_uid) : std::nullopt;
}

Result<std::optional<gid_t>> DirectoryAccounts::groupId(const std::string& name) const {
    if (auto number = numberOf(storeFile_, "/groups", "gid", name); !number.isOk() || *number) {
        return number;
    }
    group entry{};
    std::vector<char> buffer;
    return lookUp(::getgrnam_r, name.c_str(), entry, buffer) ? std::optional(entry.gr_gid) : std::nullopt;
}

} // namespace platform
