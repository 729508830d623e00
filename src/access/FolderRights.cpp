#include "access/FolderRights.h"

#include <algorithm>
#include <cerrno>
#include <memory>

#include <acl/libacl.h>
#include <sys/acl.h>

namespace accesscheck {

namespace {

struct FreeACL {
    void operator()(void* acl) const { acl_free(acl); }
};

using OwnedACL = std::unique_ptr<std::remove_pointer_t<acl_t>, FreeACL>;

unsigned rightsOf(acl_entry_t entry) {
    acl_permset_t set = nullptr;
    acl_get_permset(entry, &set);
    return (acl_get_perm(set, ACL_READ) == 1 ? mayRead : 0U) |
           (acl_get_perm(set, ACL_WRITE) == 1 ? mayWrite : 0U) |
           (acl_get_perm(set, ACL_EXECUTE) == 1 ? maySearch : 0U);
}

id_t qualifierOf(acl_entry_t entry) {
    const std::unique_ptr<void, FreeACL> qualifier(acl_get_qualifier(entry));
    return qualifier ? *static_cast<const id_t*>(qualifier.get()) : static_cast<id_t>(-1);
}

bool holds(unsigned rights, unsigned wanted) {
    return (rights & wanted) == wanted;
}

} // namespace

platform::Result<FolderRights> FolderRights::of(const std::string& path) {
    FolderRights rights;
    if (::stat(path.c_str(), &rights.status_) != 0) {
        return platform::Status::ofErrno("cannot look at", path, errno);
    }
    const mode_t mode = rights.status_.st_mode;
    rights.owner_ = mode >> 6 & 7;
    rights.others_ = mode & 7;
    rights.groups_.push_back({rights.status_.st_gid, mode >> 3 & 7});
    const OwnedACL acl(acl_get_file(path.c_str(), ACL_TYPE_ACCESS));
    if (!acl) {
        return errno == ENOTSUP || errno == ENOSYS
                   ? platform::Result<FolderRights>(rights)
                   : platform::Status::ofErrno("cannot read the access control list of", path, errno);
    }
    acl_entry_t entry = nullptr;
    for (int which = ACL_FIRST_ENTRY; acl_get_entry(acl.get(), which, &entry) == 1; which = ACL_NEXT_ENTRY) {
        acl_tag_t tag = ACL_UNDEFINED_TAG;
        acl_get_tag_type(entry, &tag);
        if (tag == ACL_USER) {
            rights.users_.push_back({qualifierOf(entry), rightsOf(entry)});
        } else if (tag == ACL_GROUP) {
            rights.groups_.push_back({qualifierOf(entry), rightsOf(entry)});
        } else if (tag == ACL_GROUP_OBJ) {
            // With a list, the mode's group bits are the mask.
            rights.groups_.front().rights = rightsOf(entry);
        } else if (tag == ACL_MASK) {
            rights.hasList_ = true;
            rights.mask_ = rightsOf(entry);
        }
    }
    return rights;
}

std::optional<bool> FolderRights::groupsAllow(const Account& account, unsigned wanted) const {
    // A single entry must grant everything wanted: the rights of several entries do not add up.
    std::optional<bool> allowed;
    for (const Entry& entry : groups_) {
        if (std::ranges::find(account.groups, entry.id) != account.groups.end()) {
            allowed = allowed.value_or(false) || holds(entry.rights & mask_, wanted);
        }
    }
    return allowed;
}

bool FolderRights::allow(const Account& account, unsigned wanted) const {
    if (account.uid == 0) {
        return true;
    }
    if (account.uid == status_.st_uid) {
        return holds(owner_, wanted);
    }
    if (const auto user = std::ranges::find(users_, account.uid, &Entry::id); user != users_.end()) {
        return holds(user->rights & mask_, wanted);
    }
    return groupsAllow(account, wanted).value_or(holds(others_, wanted));
}

RightsClass FolderRights::decidedBy(const Account& account) const {
    if (account.uid == 0) {
        return RightsClass::Root;
    }
    if (account.uid == status_.st_uid) {
        return RightsClass::Owner;
    }
    if (std::ranges::find(users_, account.uid, &Entry::id) != users_.end()) {
        return RightsClass::List;
    }
    if (!groupsAllow(account, 0)) {
        return RightsClass::Others;
    }
    return hasList_ ? RightsClass::List : RightsClass::Group;
}

} // namespace accesscheck
