#include "review/Warnings.h"

#include "model/ServerSettings.h"
#include "platform/foundation/Host.h"
#include "tools/HelperFolders.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <set>
#include <utility>

#include <sys/stat.h>
#include <sys/xattr.h>

namespace review {

namespace {

namespace fs = std::filesystem;

/// The path with links resolved, or, when that fails, only normalized.
fs::path resolved(const std::string& path) {
    std::error_code error;
    const fs::path real = fs::weakly_canonical(path, error);
    return error ? fs::path(path).lexically_normal() : real;
}

using Identity = std::pair<dev_t, ino_t>;

std::optional<Identity> identityOf(const std::string& path) {
    struct stat status {};

    return ::stat(path.c_str(), &status) == 0 ? std::optional(Identity(status.st_dev, status.st_ino))
                                              : std::nullopt;
}

/// The folders that contain `folder`, by identity, because a share's path may contain links.
std::set<Identity> foldersAround(const fs::path& folder) {
    std::set<Identity> around;
    for (fs::path each = folder; each != each.parent_path(); each = each.parent_path()) {
        if (const auto identity = identityOf(each.parent_path().string())) {
            around.insert(*identity);
        }
    }
    return around;
}

void addPlaceWarnings(const Situation& situation, const std::string& folder, std::vector<Remark>* warnings) {
    if (folder.starts_with('"') && withoutQuotes(folder) != folder) {
        // The servers find it, but the tools that set its owner and mode do not.
        warnings->push_back(remark("relative-folder",
                                   "The folder %@ is in quotes: its owner and privileges cannot be set, and "
                                   "the change would be left half made.  Take the quotes away, in smb.conf "
                                   "if they are there.",
                                   folder));
        return;
    }
    if (!folder.starts_with('/')) {
        warnings->push_back(remark(
            "relative-folder", "The folder \"%@\" does not begin with /: no server will find it.", folder));
        return;
    }

    struct stat status {};

    const bool isComputer = platform::Host::current().services().computer != nullptr;
    const auto host = isComputer ? tools::FolderHost::Computer : tools::FolderHost::Embedded;
    const fs::path real = resolved(folder);
    const bool exists = ::stat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
    if (!exists) {
        warnings->push_back(remark("no-folder", "There is no folder \"%@\".", folder));
    }
    if (tools::isSystemFolder(folder, host)) {
        warnings->push_back(remark("system-folder",
                                   "The folder \"%@\" is the system's own: its owner and mode stay as they "
                                   "are, and what is in it would be shared.",
                                   folder));
    }
    const std::set<Identity> around = foldersAround(real);
    const auto own = identityOf(folder);
    for (const NormalShare& share : situation.before.currentShares()) {
        const std::string other(withoutQuotes(share.DirectoryPath()));
        const bool isOther =
            share.ShareName() != situation.before.shareName->stringValue() && other.starts_with('/');
        const auto identity = isOther ? identityOf(other) : std::nullopt;
        if (identity && around.contains(*identity)) {
            warnings->push_back(remark("folder-inside-share",
                                       "The folder \"%@\" is inside the share \"%@\" (%@): whoever may use "
                                       "that share reaches it, too.",
                                       folder, share.ShareName(), other));
        } else if (identity && identity == own) {
            warnings->push_back(remark("folder-shared-twice",
                                       "The folder \"%@\" is also the share \"%@\": whoever may use that "
                                       "share reaches it, too.",
                                       folder, share.ShareName()));
        }
    }
}

/// Whether a class of users gets other rights although the user did not touch its menu.
bool changesUntouchedMode(const BRController& now, const FolderChange& change) {
    const std::array<std::pair<const NSControl*, mode_t>, 3> classes{
        {{now.ownerPrivs, 0700}, {now.groupPrivs, 0070}, {now.everyonePrivs, 0007}}};
    const mode_t changed = change.modeBefore ^ change.modeAfter;
    return std::ranges::any_of(classes, [changed](const auto& each) {
        return (changed & each.second) != 0 && !each.first->isEdited();
    });
}

void addRightsWarnings(const BRController& now, const FolderChange& change, std::vector<Remark>* warnings) {
    const bool changesOwner = change.ownerBefore != change.ownerAfter && !now.owner->isEdited();
    const bool changesGroup = change.groupBefore != change.groupAfter && !now.group->isEdited();
    if (changesOwner || changesGroup) {
        warnings->push_back(remark("owner-changes",
                                   "The owner and group of the folder \"%@\" change from %@ to %@, although "
                                   "nobody touched those menus.",
                                   change.path, change.accountsBefore, change.accountsAfter));
    }
    if (change.changesMode() && changesUntouchedMode(now, change)) {
        warnings->push_back(remark(
            "mode-changes",
            "The mode of the folder \"%@\" changes from %o to %o, although nobody touched those menus.",
            change.path, change.modeBefore, change.modeAfter));
    }
    constexpr mode_t groupBits = 0070; // they are the mask of an access control list, acl(5)
    if (((change.modeBefore ^ change.modeAfter) & groupBits) != 0 &&
        ::getxattr(change.path.c_str(), "system.posix_acl_access", nullptr, 0) > 0) {
        warnings->push_back(
            remark("access-list",
                   "The folder \"%@\" has an access control list: what you give the group is "
                   "the most that anybody in the list may do, and the group itself may do what "
                   "the list says (getfacl).",
                   change.path));
    }
    constexpr mode_t readAndWrite = 0600;
    if (change.changesMode() && (change.modeAfter & readAndWrite) == 0) {
        warnings->push_back(
            remark("owner-locked-out",
                   "The owner of the folder \"%@\" will be able neither to read it nor to write to it.",
                   change.path));
    }
}

} // namespace

void addFolderWarnings(const Situation& situation, std::vector<Remark>* warnings) {
    if (!situation.is("createShare:")) {
        return;
    }
    addPlaceWarnings(situation, situation.before.directory->stringValue(), warnings);
    for (const FolderChange& change : situation.plan.folders) {
        addRightsWarnings(situation.before, change, warnings);
    }
}

} // namespace review
