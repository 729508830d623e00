#include "app/BRController.h"

#include "app/Alerts.h"
#include "app/DirectoryRecords.h"
#include "privileged/NiutilTask.h"

#include <algorithm>
#include <string>

namespace {

/// A field's name for the list of empty fields, and whether it is empty.
struct FieldState {
    const char* name;
    bool empty;
};

/// Returns the names of the empty fields, joined by ", ". They are not translated.
std::string namesOfEmptyFields(std::initializer_list<FieldState> fields) {
    std::string names;
    for (const FieldState& field : fields) {
        if (field.empty) {
            names += (names.empty() ? "" : ", ") + std::string(field.name);
        }
    }
    return names;
}

std::vector<UserRecord> currentUsers() {
    return recordsOfReport<UserRecord>(NiutilTask::sharedInstance().currentUsers());
}

std::vector<GroupRecord> currentGroups() {
    return recordsOfReport<GroupRecord>(NiutilTask::sharedInstance().currentGroups());
}

} // namespace

const BRRow* BRController::selectedRow(const NSTableView& table, const std::vector<BRRow>& rows) {
    const int row = table.selectedRow();
    const auto index = static_cast<std::size_t>(row);
    // After a reread, the list may be shorter than the table until the table is reloaded.
    return row >= 0 && index < rows.size() ? &rows[index] : nullptr;
}

bool BRController::checkUser(const std::string& shortNameText) const {
    return std::ranges::none_of(currentUsers(),
                                [&](const UserRecord& user) { return user.name == shortNameText; });
}

bool BRController::checkGroup(const std::string& groupNameText) const {
    return std::ranges::none_of(currentGroups(),
                                [&](const GroupRecord& record) { return record.name == groupNameText; });
}

bool BRController::checkUID(std::int64_t id) const {
    return std::ranges::none_of(currentUsers(), [id](const UserRecord& user) { return user.id() == id; });
}

bool BRController::checkGID(std::int64_t id) const {
    return std::ranges::none_of(currentGroups(),
                                [id](const GroupRecord& record) { return record.id() == id; });
}

bool BRController::checkAdmin(const std::string& shortNameText) const {
    return isAdminUser(currentGroups(), shortNameText);
}

void BRController::addUser(const std::string& shortNameText, const std::string& toGroup,
                           const std::vector<std::string>& groupUsers) {
    if (std::ranges::find(groupUsers, shortNameText) == groupUsers.end()) {
        NiutilTask::sharedInstance().addUser(shortNameText, toGroup);
    }
}

void BRController::removeUser(const std::string& shortNameText, const std::string& fromGroup,
                              const std::vector<std::string>& groupUsers) {
    if (std::ranges::find(groupUsers, shortNameText) != groupUsers.end()) {
        NiutilTask::sharedInstance().removeUser(shortNameText, fromGroup);
    }
}

void BRController::addNewGroup(NSControl* /*sender*/) {
    if (!writeGroup()) {
        return;
    }
    updateUsersGroupsList(nullptr);
    updateGroupsList(nullptr);
}

bool BRController::writeGroup() {
    const std::string name = groupName->stringValue();
    const bool isNew = checkGroup(name);
    const bool confirmed =
        isNew ? confirm("Confirm Add New Group", "Are you sure you want to add a new Group?")
              : confirm("Confirm Update Group", "Are you sure you want to update the selected group?");
    if (!confirmed) {
        return true;
    }
    const std::string empty =
        namesOfEmptyFields({{"Group Name", name.empty()}, {"GID", gid->stringValue().empty()}});
    if (!empty.empty()) {
        showAlert("Group Fields Empty",
                  "To add a New Group all fields must have a valid value.  The following field(s) were left "
                  "empty:\n%@",
                  empty);
        return false;
    }
    if (isNew && !checkGID(longLongValue(gid->stringValue())) &&
        !confirm(
            "GID is Not Unique",
            "The GID entered is not unique.  If you add a new group with a non-unique GID, the results will "
            "be unpredictable.  Do you wish to add a new Group?")) {
        return true;
    }
    NiutilTask::sharedInstance().createGroup(name, gid->stringValue(), !isNew);
    updateSystemUsersGroups(nullptr);
    return true;
}

void BRController::addNewUser(NSControl* /*sender*/) {
    const bool isNew = checkUser(shortName->stringValue());
    if (confirmUserWrite(isNew)) {
        // An existing user's record already has a group, so only a new user needs a choice.
        const std::string empty =
            namesOfEmptyFields({{"Full Name", fullName->stringValue().empty()},
                                {"Short Name", shortName->stringValue().empty()},
                                {"UID", uid->stringValue().empty()},
                                {"Group", isNew && groupPopUp->indexOfSelectedItem() < 0}});
        if (!empty.empty()) {
            showAlert("User Fields Empty",
                      "To add a New User all fields must have a valid value.  The following field(s) were "
                      "left empty:\n%@",
                      empty);
            return;
        }
        if (isNew) {
            createUser();
        } else {
            updateUser();
        }
    }
    updateUsersGroupsList(nullptr);
    refreshGroupList(nullptr);
}

bool BRController::confirmUserWrite(bool isNew) const {
    if (isNew) {
        return confirm(
            "Confirm Add New File Sharing Only User",
            "Are you sure you want to add a new File Sharing Only User?  If you want to add a standard "
            "user, please visit the Users Control Panel.");
    }
    if (checkAdmin(shortName->stringValue())) {
        return confirm(
            "Confirm Update Admin User",
            "Are you sure you want to update the selected admin user?  If you proceed, this user may "
            "lose admin privileges.");
    }
    return confirm("Confirm Update User", "Are you sure you want to update the selected user?");
}

void BRController::createUser() {
    if (!checkUID(longLongValue(uid->stringValue())) &&
        !confirm("UID is Not Unique", "The UID entered is not unique.  If you add a new user with a "
                                      "non-unique UID, the results will be "
                                      "unpredictable.  Do you wish to add a new File Sharing Only User?")) {
        return;
    }
    const std::string name = shortName->stringValue();
    if (NiutilTask::sharedInstance().createUser(name, fullName->stringValue(), uid->stringValue(),
                                                std::to_string(groupPopUp->tagOfSelectedItem()),
                                                publicSharedPopUp->indexOfSelectedItem() == 0, false)) {
        beginPasswordSheet();
    }
    addUser(name, groupPopUp->titleOfSelectedItem().value_or(""), {});
    refreshPublicList(nullptr);
}

void BRController::updateUser() {
    const std::string name = shortName->stringValue();
    const std::optional<std::string> groupTitle = groupPopUp->titleOfSelectedItem();
    NiutilTask::sharedInstance().createUser(name, fullName->stringValue(), uid->stringValue(),
                                            groupTitle ? std::to_string(groupPopUp->tagOfSelectedItem())
                                                       : recordedGroupId(name),
                                            publicSharedPopUp->indexOfSelectedItem() == 0, true);
    if (groupTitle) {
        for (const GroupRecord& record : currentGroups()) {
            if (record.name == *groupTitle) {
                addUser(name, record.name, record.members());
            }
        }
    }
    refreshPublicList(nullptr);
}

std::string BRController::recordedGroupId(const std::string& shortNameText) {
    const std::vector<UserRecord> users = currentUsers();
    const auto user = std::ranges::find(users, shortNameText, &UserRecord::name);
    // An empty id writes the property without a value, so that a record without one stays so.
    return user == users.end() || user->gid == reportNoValue ? std::string() : user->gid;
}

void BRController::deleteSelectedUser(NSControl* /*sender*/) {
    const BRRow* row = selectedRow(*userTableView, userShares);
    if (row == nullptr) {
        return;
    }
    const std::string name = row->at("User");
    const std::vector<GroupRecord> groups = currentGroups();
    if (isAdminUser(groups, name)) {
        NSRunAlertPanel(
            NSLocalizedString("Admin Users Cannot Be Deleted"),
            NSLocalizedString("%@ is an admin user.  Brindle will not delete admin users.  If you want "
                              "to delete an admin user, open the Accounts preference pane in the System "
                              "Preferences application."),
            NSLocalizedString("Cancel"), std::nullopt, std::nullopt, name);
        return;
    }
    if (confirm("Confirm Delete Selected User", "Are you sure you want to delete the user %@?", name)) {
        NiutilTask::sharedInstance().deleteUser(name);
        for (const GroupRecord& record : groups) {
            removeUser(name, record.name, record.members());
        }
    }
    refreshPublicList(nullptr);
    updateUserTextFields(nullptr);
    updateUsersGroupsList(nullptr);
    refreshGroupList(nullptr);
}

void BRController::deleteSelectedGroup(NSControl* /*sender*/) {
    const BRRow* row = selectedRow(*groupTableView, groupShares);
    if (row == nullptr) {
        return;
    }
    const std::string name = row->at("Group");
    if (confirm("Confirm Delete Selected Group", "Are you sure you want to delete the group %@?", name)) {
        NiutilTask::sharedInstance().deleteGroup(name);
    }
    updateSystemUsersGroups(nullptr);
    updateUsersGroupsList(nullptr);
    updateGroupsList(nullptr);
}

void BRController::addUserToGroup(NSControl* /*sender*/) {
    changeMembership(&BRController::addUser);
}

void BRController::removeUserFromGroup(NSControl* /*sender*/) {
    changeMembership(&BRController::removeUser);
}

void BRController::changeMembership(MembershipChange change) {
    const BRRow* row = selectedRow(*groupTableView, groupShares);
    if (row == nullptr) {
        return;
    }
    const std::string name = row->at("Group");
    const std::vector<std::string> members = memberNames(row->at("Users in Group"));
    for (const int selected : groupUsersTableView->selectedRows()) {
        const auto index = static_cast<std::size_t>(selected);
        if (index < groupUserShares.size()) {
            (this->*change)(groupUserShares[index], name, members);
        }
    }
    guarded([this] { parseGroupShares(); }, bugMessage(FailedStep::Groups));
    groupTableView->reloadData();
}

void BRController::changePassword(NSControl* /*sender*/) {
    if (selectedRow(*userTableView, userShares) != nullptr) {
        beginPasswordSheet();
    }
}

void BRController::beginPasswordSheet() {
    NSApp().beginSheet(passwordWindow, NSApp().mainWindow(),
                       [this](NSWindow* sheet, int returnCode) { didEndSheet(sheet, returnCode); });
}

void BRController::setPassword(NSControl* /*sender*/) {
    const std::string& first = passwordSecureText1->stringValue();
    if (first != passwordSecureText2->stringValue()) {
        passwordErrorText->setStringValue(NSLocalizedString("Passwords Do Not Match"));
    } else if (first.empty()) {
        passwordErrorText->setStringValue(NSLocalizedString("Password Fields Empty"));
    } else {
        passwordErrorText->setStringValue("");
        NSApp().endSheet(passwordWindow, 0);
    }
}

void BRController::didEndSheet(NSWindow* sheet, int /*returnCode*/) {
    sheet->orderOut();
    NiutilTask::sharedInstance().runPasswd(shortName->stringValue(), passwordSecureText1->stringValue());
    passwordSecureText1->setStringValue("");
    passwordSecureText2->setStringValue("");
}
