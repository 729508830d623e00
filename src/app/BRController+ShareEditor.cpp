#include "app/BRController.h"

#include "app/Alerts.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSString.h"
#include "privileged/NiutilTask.h"

#include <algorithm>

namespace {

// The privilege menus list read and write first and none last.
constexpr int highestPrivilege = 3;

int privilegeOf(const NSPopUpButton& menu) {
    return highestPrivilege - menu.indexOfSelectedItem();
}

/// Selects the account's name, and first appends it when the menu does not list it. Without a name nothing is
/// selected, so that a write leaves the folder's account unchanged.
void selectAccount(NSPopUpButton& menu, const std::optional<std::string>& name) {
    if (!name) {
        menu.selectItemAtIndex(-1);
        return;
    }
    if (menu.indexOfItemWithTitle(*name) < 0) {
        menu.addItemWithTitle(*name);
    }
    menu.selectItemWithTitle(*name);
}

} // namespace

void BRController::updateShareTextFields(NSControl* /*sender*/) {
    if (const NormalShare* share = shareAtRow(normalTableView->selectedRow())) {
        showShare(*share);
    } else {
        showNoShare();
    }
    showSelectedShareName();
}

void BRController::showShare(const NormalShare& share) {
    const std::string yes = NSLocalizedString("Yes");
    shareName->setStringValue(share.ShareName());
    directory->setStringValue(share.DirectoryPath());
    showFolderPrivileges(share.DirectoryPath());
    const bool inherits = share.Inherit() == yes;
    inheritPermissionsButton->setState(inherits ? NSOnState : NSOffState);
    inheritOwnerButton->setEnabled(inherits);
    inheritOwnerButton->setState(share.InheritOwner() == yes ? NSOnState : NSOffState);
    guestAccessButton->setState(isEqualIgnoringCase(share.SMBGuestAccess(), "yes") ? NSOnState : NSOffState);
    sharingAFS->selectItemAtIndex(share.AFS() == "+" ? 1 : 0);
    sharingSMB->selectItemAtIndex(share.SMB() == "+" ? 1 : 0);
    createNewShare->setTitle(NSLocalizedString("Update Share"));
    deleteButton->setEnabled(true);
}

void BRController::showNoShare() {
    shareName->setStringValue("");
    directory->setStringValue("");
    owner->selectItemAtIndex(owner->numberOfItems() > 0 ? 0 : -1);
    group->selectItemAtIndex(group->numberOfItems() > 0 ? 0 : -1);
    for (NSPopUpButton* menu : {ownerPrivs, groupPrivs, everyonePrivs}) {
        selectMenuItem(menu, 0);
    }
    inheritPermissionsButton->setState(NSOffState);
    sharingAFS->selectItemAtIndex(0);
    sharingSMB->selectItemAtIndex(0);
    createNewShare->setTitle(NSLocalizedString("Create New Share"));
    deleteButton->setEnabled(false);
}

void BRController::showSelectedShareName() {
    const NormalShare* share = shareAtRow(normalTableView->selectedRow());
    selectedShareName->setStringValue(share != nullptr ? share->ShareName() : std::string());
}

void BRController::showFolderPrivileges(const std::string& path) {
    const std::optional<NSFileAttributes> found = fileAttributesAtPath(path);
    selectAccount(*owner, found ? found->ownerAccountName() : std::nullopt);
    selectAccount(*group, found ? found->groupOwnerAccountName() : std::nullopt);
    const int permissions = found ? found->posixPermissions : 0;
    selectMenuItem(ownerPrivs, ownerPrivilegeCode(permissions));
    selectMenuItem(groupPrivs, groupPrivilegeCode(permissions));
    selectMenuItem(everyonePrivs, everyonePrivilegeCode(permissions));
}

void BRController::updateCreateShareButton(NSControl* /*sender*/) {
    const std::string& name = shareName->stringValue();
    const bool exists = std::ranges::any_of(
        currentShares_, [&name](const NormalShare& share) { return share.ShareName() == name; });
    createNewShare->setTitle(NSLocalizedString(exists ? "Update Share" : "Create New Share"));
}

void BRController::updateInheritButtons(NSControl* /*sender*/) {
    inheritOwnerButton->setEnabled(inheritPermissionsButton->state() == NSOnState);
}

void BRController::selectMenuItem(NSPopUpButton* menu, int privs) {
    if (privs >= 0 && privs <= highestPrivilege) {
        menu->selectItemAtIndex(highestPrivilege - privs);
    }
}

std::int32_t BRController::menuToPermissions() const {
    return modeForPrivilegeCodes(privilegeOf(*ownerPrivs), privilegeOf(*groupPrivs),
                                 privilegeOf(*everyonePrivs));
}

void BRController::selectDirectory(NSControl* sender) {
    updateCreateShareButton(sender);
    NSOpenPanel panel;
    panel.setCanChooseFiles(false);
    panel.setCanChooseDirectories(true);
    if (const auto path = panel.runModal()) {
        directory->setStringValue(*path);
        showFolderPrivileges(*path);
    }
}

bool BRController::validateShareFields() const {
    if (shareName->stringValue().empty()) {
        showAlert("Share Name Empty", "The Share Name field must not be empty.");
    } else if (directory->stringValue().empty()) {
        showAlert("Directory Empty", "The Directory field must not be empty.");
    } else if (isEqualIgnoringCase(shareName->stringValue(), "global")) {
        showAlert("Illegal Share Name",
                  "Shares can not have the name \"Global\" when sharing directories with Windows users.  "
                  "Please change your Share Name.");
    } else if (isEqualIgnoringCase(shareName->stringValue(), "homes")) {
        showAlert("Illegal Share Name",
                  "Shares can not have the name \"Homes\" when sharing directories with Windows users.  "
                  "Please change your Share Name.");
    } else {
        return true;
    }
    return false;
}

void BRController::createShare(NSControl* sender) {
    const int rowBefore = normalTableView->selectedRow();
    if (!validateShareFields()) {
        return;
    }
    NiutilTask& task = NiutilTask::sharedInstance();
    if (!task.isAuthenticated() && !task.authenticate()) {
        return;
    }
    const std::string name = shareName->stringValue();
    const std::string folder = directory->stringValue();
    const bool isCreated = task.createShare(name, folder, sharingAFS->indexOfSelectedItem(),
                                            inheritPermissionsButton->state(), inheritOwnerButton->state());
    if (isCreated) {
        showSMBWriteResult(smbConf->modifySMBShare(name, folder, sharingSMB->indexOfSelectedItem(),
                                                   inheritPermissionsButton->state(),
                                                   guestAccessButton->state()));
    } else {
        task.deleteShare(name);
        showCreateShareFailed(name);
    }
    task.changePermissions(folder, owner->titleOfSelectedItem().value_or(""),
                           group->titleOfSelectedItem().value_or(""), menuToPermissions());
    task.restartAFS();
    task.restartSMB();
    refreshNormalList(sender);
    selectShareAfterWrite(rowBefore, isCreated);
    deleteButton->setEnabled(true);
    updateCreateShareButton(sender);
}

void BRController::showCreateShareFailed(const std::string& name) {
    showAlert("Create Share Failed", "An Error occured while creating the share \"%@\", please try again.",
              name);
}

void BRController::selectShareAfterWrite(int rowBefore, bool isCreated) {
    int row = rowBefore < normalTableView->numberOfRows() ? rowBefore : -1;
    if (row < 0 && isCreated) {
        const std::string& name = shareName->stringValue();
        const auto found = std::ranges::find(currentShares_, name, &NormalShare::ShareName);
        row = found == currentShares_.end() ? -1 : static_cast<int>(found - currentShares_.begin());
    }
    normalTableView->selectRow(row);
}

void BRController::deleteShare(NSControl* sender) {
    const NormalShare* share = shareAtRow(normalTableView->selectedRow());
    if (share == nullptr) {
        return;
    }
    const std::string name = share->ShareName();
    NiutilTask& task = NiutilTask::sharedInstance();
    task.deleteShare(name);
    showSMBWriteResult(smbConf->modifySMBShare(name, "", 0, 0, 0));
    task.restartAFS();
    task.restartSMB();
    refreshNormalList(sender);
    updateShareTextFields(sender);
}

void BRController::deleteAllShares(NSControl* /*sender*/) {
    if (!confirm("Confirm Delete All Shares", "Are you sure you want to delete all the shares?")) {
        return;
    }
    NiutilTask::sharedInstance().deleteAllShares();
    parseCurrentShares();
    normalTableView->reloadData();
    showSelectedShareName();
}
