#include "app/BRController.h"

#include "app/DirectoryRecords.h"
#include "platform/appkit/NSAlert.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSLog.h"
#include "privileged/NiutilTask.h"

#include <algorithm>
#include <map>
#include <utility>

namespace {

/// The lowest group id that is proposed: lower ones belong to the system.
constexpr std::uint64_t lowestProposedGroupId = 101;

using IdOfName = std::map<std::string, std::int64_t, std::less<>>;

/// Refills a menu and selects the same title as before, even when it is no longer listed: a refill must not
/// change what an editor is about to write. `idOfName` has the tags of all names, listed or not.
void refillMenu(NSPopUpButton& menu, std::vector<NSPopUpButton::Item> items, const IdOfName& idOfName) {
    const std::optional<std::string> remembered = menu.titleOfSelectedItem();
    const std::int64_t formerTag = menu.tagOfSelectedItem();
    menu.removeAllItems();
    menu.addItems(std::move(items));
    if (!remembered) {
        menu.selectItemAtIndex(-1);
        return;
    }
    if (*remembered == NSLocalizedString("Item1")) { // the interface file's placeholder
        return;
    }
    if (menu.indexOfItemWithTitle(*remembered) < 0) {
        const auto known = idOfName.find(*remembered);
        menu.addItemWithTitle(*remembered);
        menu.setTag(menu.numberOfItems() - 1, known == idOfName.end() ? formerTag : known->second);
    }
    menu.selectItemWithTitle(*remembered);
}

/// What the entries of a menu of groups have as their tags.
enum class GroupTag { None, Id };

void refillGroupMenu(NSPopUpButton& menu, const std::vector<GroupRecord>& groups, bool showsSystemGroups,
                     GroupTag kind) {
    std::vector<NSPopUpButton::Item> items;
    IdOfName idOfName;
    for (const GroupRecord& record : groups) {
        const std::int64_t tag = kind == GroupTag::Id ? record.id() : 0;
        idOfName.emplace(record.name, tag);
        if (showsSystemGroups || !record.isSystem()) {
            items.push_back({record.name, tag});
        }
    }
    refillMenu(menu, std::move(items), idOfName);
}

void refillUserMenu(NSPopUpButton& menu, const NiutilTask::Report& users, bool showsSystemUsers) {
    std::vector<NSPopUpButton::Item> items;
    items.reserve(users->size());
    for (const std::string& line : *users) {
        const UserLine user(line);
        if (showsSystemUsers || !user.isSystem()) {
            items.push_back({std::string(user.name), 0});
        }
    }
    refillMenu(menu, std::move(items), {});
}

/// Returns the highest id that is not negative; none when there is none.
template <class Record>
std::optional<std::int64_t> highestIdOf(const std::vector<Record>& records) {
    std::int64_t highest = -1;
    for (const Record& record : records) {
        highest = std::max(highest, record.id());
    }
    return highest == -1 ? std::nullopt : std::optional(highest);
}

/// Unsigned, because a record may hold the highest number that is read.
std::uint64_t nextId(std::int64_t highest) {
    return static_cast<std::uint64_t>(highest) + 1;
}

bool anyRowHas(const std::vector<BRRow>& rows, const char* key, const std::string& value) {
    return std::ranges::any_of(rows, [&](const BRRow& row) { return row.valueForKey(key) == value; });
}

} // namespace

void BRController::getNextUID(NSControl* /*sender*/) {
    const auto highest =
        highestIdOf(recordsOfReport<UserRecord>(NiutilTask::sharedInstance().currentUsers()));
    if (!highest) {
        NSLog("No Users found to update the UID");
    } else {
        uid->setStringValue(std::to_string(nextId(*highest)));
    }
}

void BRController::getNextGID(NSControl* sender) {
    updateAddGroupButton(sender);
    const auto highest =
        highestIdOf(recordsOfReport<GroupRecord>(NiutilTask::sharedInstance().currentGroups()));
    if (!highest) {
        NSLog("No Groups found to update the GID");
        NSBeep();
    } else {
        gid->setStringValue(std::to_string(std::max(nextId(*highest), lowestProposedGroupId)));
    }
}

void BRController::updateAddUserButton(NSControl* /*sender*/) {
    const bool exists = anyRowHas(userShares, "User", shortName->stringValue());
    addNewUserButton->setTitle(NSLocalizedString(exists ? "Update User" : "Add New User"));
}

void BRController::updateAddGroupButton(NSControl* /*sender*/) {
    const bool exists = anyRowHas(groupShares, "Group", groupName->stringValue());
    createNewGroupButton->setTitle(NSLocalizedString(exists ? "Update Group" : "Add New Group"));
}

void BRController::updateUserTextFields(NSControl* /*sender*/) {
    const BRRow* row = selectedRow(*userTableView, userShares);
    fullName->setStringValue(row != nullptr ? row->at("Full Name") : "");
    shortName->setStringValue(row != nullptr ? row->at("User") : "");
    uid->setStringValue(row != nullptr ? row->at("UID") : "");
    const bool sharesPublicFolder = row != nullptr && row->at("Public Shared") == NSLocalizedString("YES");
    publicSharedPopUp->selectItemAtIndex(sharesPublicFolder ? 0 : 1);
    if (row != nullptr) {
        groupPopUp->selectItemAtIndex(groupPopUp->indexOfItemWithTag(longLongValue(row->at("GID"))));
    }
    addNewUserButton->setTitle(NSLocalizedString(row != nullptr ? "Update User" : "Add New User"));
    for (NSButton* button :
         {deleteUserButton, changePasswordButton, disablePublicSelectedButton, enablePublicSelectedButton}) {
        button->setEnabled(row != nullptr);
    }
}

void BRController::updateGroupTextFields(NSControl* /*sender*/) {
    const BRRow* row = selectedRow(*groupTableView, groupShares);
    groupName->setStringValue(row != nullptr ? row->at("Group") : "");
    gid->setStringValue(row != nullptr ? row->at("GID") : "");
    createNewGroupButton->setTitle(NSLocalizedString(row != nullptr ? "Update Group" : "Add New Group"));
    for (NSButton* button : {deleteGroupButton, addUserToGroupButton, removeUserFromGroupButton}) {
        button->setEnabled(row != nullptr);
    }
}

void BRController::updateUsersGroupsList(NSControl* sender) {
    updateCreateShareButton(sender);
    const bool showsSystem = showSystemUsersGroups->state() == NSOnState;
    NiutilTask& task = NiutilTask::sharedInstance();
    refillUserMenu(*owner, task.currentUsers(), showsSystem);
    refillGroupMenu(*group, recordsOfReport<GroupRecord>(task.currentGroups()), showsSystem, GroupTag::None);
}

void BRController::updateGroupsList(NSControl* /*sender*/) {
    refillGroupMenu(*groupPopUp, recordsOfReport<GroupRecord>(NiutilTask::sharedInstance().currentGroups()),
                    showSystemUsersGroups2->state() == NSOnState, GroupTag::Id);
}

void BRController::refreshGroupList(NSControl* /*sender*/) {
    guarded([this] { parseGroupShares(); }, bugMessage(FailedStep::Groups));
    groupTableView->reloadData();
    updateGroupTextFields(nullptr);
    guarded([this] { parseGroupUserShares(); }, bugMessage(FailedStep::Users));
    groupUsersTableView->reloadData();
}

void BRController::updateSystemUsersGroups(NSControl* /*sender*/) {
    guarded([this] { parseGroupShares(); }, bugMessage(FailedStep::Groups));
    groupTableView->reloadData();
    guarded([this] { parseGroupUserShares(); }, bugMessage(FailedStep::Users));
    groupUsersTableView->reloadData();
}
