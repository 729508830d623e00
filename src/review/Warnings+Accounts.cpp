#include "review/Warnings.h"

#include "app/DirectoryRecords.h"
#include "directory/DirectoryRules.h"
#include "platform/foundation/Host.h"
#include "platform/foundation/SystemPaths.h"
#include "platform/posix/ProcessTable.h"

#include <algorithm>
#include <set>
#include <sstream>

namespace review {

namespace {

/// An action on more accounts than this gives a warning.
constexpr std::size_t manyAccounts = 20;

/// The warnings about an account, for users or for groups.
struct AccountTexts {
    const char* nameCase;
    const char* overwrites;
    const char* idChanges;
    const char* idChangesOnComputer; ///< whose own programs change the files in the user's home folder, too
};

constexpr AccountTexts userTexts{
    "The name \"%@\" differs from the user \"%@\" only in the case of letters.",
    "There is a user \"%@\" already: the record of that user is overwritten, "
    "although it is not selected in the list.",
    "The id of the user \"%@\" changes from %@ to %@: existing files and the "
    "password for Windows keep the old id.",
    "The id of the user \"%@\" changes from %@ to %@: files outside the home folder "
    "keep the old id."};
constexpr const char* groupIdChanges =
    "The id of the group \"%@\" changes from %@ to %@: existing folders keep the old id.";
constexpr AccountTexts groupTexts{
    "The name \"%@\" differs from the group \"%@\" only in the case of letters.",
    "There is a group \"%@\" already: its record is overwritten, although it is not selected in the list.",
    groupIdChanges, groupIdChanges};

struct EditedAccount {
    std::string place; ///< "/users"
    const char* idProperty;
    std::string name;
    std::string selected; ///< the name of the account selected in the list
    const AccountTexts& texts;
};

void addEditedAccount(const Situation& situation, const EditedAccount& account,
                      std::vector<Remark>* warnings) {
    const std::string path = account.place + "/" + account.name;
    if (!situation.directoryBefore.record(path)) {
        for (const std::string& other : situation.directoryBefore.names(account.place)) {
            if (isEqualIgnoringCase(other, account.name)) {
                warnings->push_back(remark("name-case", account.texts.nameCase, account.name, other));
            }
        }
        return;
    }
    if (account.selected != account.name) {
        warnings->push_back(remark("overwrites-account", account.texts.overwrites, account.name));
    }
    const std::string before = situation.directoryBefore.value(path, account.idProperty);
    const std::string after = situation.directoryAfter.value(path, account.idProperty);
    if (before != after) {
        const bool isComputer = platform::Host::current().services().computer != nullptr;
        warnings->push_back(remark("id-changes",
                                   isComputer ? account.texts.idChangesOnComputer : account.texts.idChanges,
                                   account.name, before, after));
    }
}

/// A missing id reads as 0, and the user would get the system's own group.
void addMissingGroupId(const Situation& situation, std::vector<Remark>* warnings) {
    const BRController& now = situation.before;
    const std::string name = now.shortName->stringValue();
    const std::string before = situation.directoryBefore.value("/users/" + name, "gid");
    const std::string after = situation.directoryAfter.value("/users/" + name, "gid");
    if (before == after) {
        return;
    }
    if (situation.directoryBefore.record("/users/" + name) && !beginsWithInteger(before) &&
        !now.groupPopUp->isEdited()) {
        warnings->push_back(
            remark("untouched-setting",
                   "The user \"%@\" has no group id and gets the id %@, although nobody touched that menu.",
                   name, after));
        return;
    }
    const std::string group = now.groupPopUp->titleOfSelectedItem().value_or("");
    const std::string path = "/groups/" + group;
    if (!group.empty() && situation.directoryBefore.record(path) &&
        !beginsWithInteger(situation.directoryBefore.value(path, "gid"))) {
        warnings->push_back(remark("id-changes",
                                   "The group \"%@\" has no id: the user \"%@\" gets the group id %@.", group,
                                   name, after));
    }
}

/// The buttons that share a Public folder leave the editor's menu unchanged.
void addPublicFolder(const Situation& situation, std::vector<Remark>* warnings) {
    const BRController& now = situation.before;
    const std::string name = now.shortName->stringValue();
    const auto isShared = [path = "/users/" + name](const DirectoryView& directory) {
        const std::string value = directory.value(path, "sharedDir");
        return !value.empty() && isPublicFolderShared(value);
    };
    const bool after = isShared(situation.directoryAfter);
    if (!situation.directoryBefore.record("/users/" + name) || now.publicSharedPopUp->isEdited() ||
        isShared(situation.directoryBefore) == after) {
        return;
    }
    warnings->push_back(remark(
        "untouched-setting",
        after ? "The Public folder of the user \"%@\" will be shared, although nobody touched that menu."
              : "The Public folder of the user \"%@\" will no longer be shared, although nobody touched that "
                "menu.",
        name));
}

/// The window's list of members may be older than the directory, and a member would be added once more.
void addMembersTwice(const Situation& situation, std::vector<Remark>* warnings) {
    const std::string group = situation.before.selectedGroupName();
    const std::string path = "/groups/" + group;
    const auto before = situation.directoryBefore.record(path).value_or(DirectoryView::Record());
    const auto after = situation.directoryAfter.record(path).value_or(DirectoryView::Record());
    std::set<std::string> members;
    for (const std::string& each : valuesOf(after, "users")) {
        if (!members.insert(each).second && std::ranges::count(valuesOf(before, "users"), each) == 1) {
            warnings->push_back(remark("member-already",
                                       "The user \"%@\" is in the group \"%@\" already, which the list does "
                                       "not show yet: use Refresh.",
                                       each, group));
        }
    }
}

/// Leaving a group's members takes nothing away from those whose own group it is.
void addOwnGroup(const Situation& situation, std::vector<Remark>* warnings) {
    const std::string group = situation.before.selectedGroupName();
    const std::string path = "/groups/" + group;
    const auto membersIn = [&path](const DirectoryView& directory) {
        const auto record = directory.record(path).value_or(DirectoryView::Record());
        const auto values = valuesOf(record, "users");
        return std::set<std::string>(values.begin(), values.end());
    };
    const std::set<std::string> after = membersIn(situation.directoryAfter);
    const std::string gid = situation.directoryAfter.value(path, "gid");
    std::vector<std::string> keeping;
    for (const std::string& member : membersIn(situation.directoryBefore)) {
        if (!after.contains(member) && situation.directoryAfter.value("/users/" + member, "gid") == gid) {
            keeping.push_back("\"" + member + "\"");
        }
    }
    if (!keeping.empty()) {
        warnings->push_back(remark("keeps-rights",
                                   "\"%@\" is also the own group of these users, who keep its rights until "
                                   "they are given another one: %@.",
                                   group, listOf(keeping)));
    }
}

/// A user who gets another group stays a member of the former one.
void addFormerGroup(const Situation& situation, std::vector<Remark>* warnings) {
    const std::string user = situation.before.shortName->stringValue();
    const std::string former = situation.directoryBefore.value("/users/" + user, "gid");
    if (former.empty() || former == situation.directoryAfter.value("/users/" + user, "gid")) {
        return;
    }
    for (const DirectoryView::Record& group : situation.directoryAfter.records("/groups")) {
        const auto names = valuesOf(group, "name");
        const auto gids = valuesOf(group, "gid");
        const auto members = valuesOf(group, "users");
        if (!names.empty() && !gids.empty() && gids.front() == former &&
            std::ranges::find(members, user) != members.end()) {
            warnings->push_back(remark("keeps-rights",
                                       "The user \"%@\" stays a member of the group \"%@\" and keeps its "
                                       "rights until you remove the user from that group.",
                                       user, names.front()));
        }
    }
}

/// The number of a deleted group is given to the next new one, and with it the group's users.
void addUsersOfDeletedGroup(const Situation& situation, std::vector<Remark>* warnings) {
    const std::string group = situation.before.selectedGroupName();
    const std::string gid = situation.directoryBefore.value("/groups/" + group, "gid");
    std::vector<std::string> users;
    for (const DirectoryView::Record& user : situation.directoryBefore.records("/users")) {
        const auto names = valuesOf(user, "name");
        const auto gids = valuesOf(user, "gid");
        if (!names.empty() && !gids.empty() && gids.front() == gid) {
            users.push_back("\"" + names.front() + "\"");
        }
    }
    if (!users.empty() && !situation.plan.runs.empty()) {
        const bool isComputer = platform::Host::current().services().computer != nullptr;
        warnings->push_back(remark("keeps-rights",
                                   isComputer
                                       ? "The group \"%@\" is the own group of these users, and the "
                                         "computer will not delete it: %@."
                                       : "The group \"%@\" is the own group of these users, who get the "
                                         "rights of the next group with its number: %@.",
                                   group, listOf(users)));
    }
}

void addNumberOfAccounts(const Plan& plan, std::vector<Remark>* warnings) {
    std::set<RecordPath> accounts;
    for (const PlannedRun& run : plan.runs) {
        const auto change =
            run.tool == platform::systempath::nicl ? directoryChange(run.arguments) : std::nullopt;
        const auto path = change ? recordPath(change->path) : std::nullopt;
        if (path && isAccount(*path)) {
            accounts.insert(*path);
        }
    }
    if (accounts.size() > manyAccounts) {
        warnings->push_back(remark("many-accounts", "%d accounts change, from \"%@\" to \"%@\".",
                                   accounts.size(), accounts.begin()->back(), accounts.rbegin()->back()));
    }
}

/// The first process that runs as the user with that number, or serves one as the SMB server does; 0 for
/// none.
pid_t processOf(const std::string& uid) {
    for (const pid_t process : platform::processIds()) {
        const auto numbers = platform::statusNumbersOf(process, "Uid");
        if (std::ranges::find(numbers, uid) != numbers.end() && !platform::isInContainer(process)) {
            return process;
        }
    }
    return 0;
}

bool isLogin(std::string_view shell) {
    return !shell.empty() && !shell.ends_with("/nologin") && !shell.ends_with("/false");
}

/// Warns of users whose account the computer does not delete or renumber now, and of those whose login goes
/// with the account: Brindle makes none, and brings none back.
void addComputersUsers(const Situation& situation, std::vector<Remark>* warnings) {
    for (const PlannedRun& run : situation.plan.runs) {
        const auto change =
            run.tool == platform::systempath::nicl ? directoryChange(run.arguments) : std::nullopt;
        const auto path = change ? recordPath(change->path) : std::nullopt;
        if (!path || !isAccount(*path) || path->front() != "users") {
            continue;
        }
        const std::string uid = situation.directoryBefore.value(change->path, "uid");
        const bool isDeleted = change->operation == "-delete" && !change->property;
        const bool isRenumbered =
            change->property == "uid" && !change->values.empty() && change->values.front() != uid;
        const pid_t process = !uid.empty() && (isDeleted || isRenumbered) ? processOf(uid) : 0;
        if (process != 0) {
            warnings->push_back(remark(
                "user-in-use",
                isDeleted
                    ? "The user \"%@\" is connected or logged in (%@, process %d): the computer will not "
                      "delete them, and they only lose their groups.  End the connection or log them "
                      "out first."
                    : "The user \"%@\" is connected or logged in (%@, process %d): the computer will not "
                      "change their id.  End the connection or log them out first.",
                path->back(), platform::programNameOf(process), process));
        } else if (isDeleted && isLogin(situation.directoryBefore.value(change->path, "shell"))) {
            warnings->push_back(remark("login-deleted",
                                       "The user \"%@\" can log in to this computer: the login is deleted, "
                                       "too, and the home folder %@ stays.",
                                       path->back(), situation.directoryBefore.value(change->path, "home")));
        }
    }
}

} // namespace

void addAccountWarnings(const Situation& situation, std::vector<Remark>* warnings) {
    const BRController& now = situation.before;
    if (situation.is("addNewUser:")) {
        addEditedAccount(situation,
                         {"/users", "uid", now.shortName->stringValue(), now.selectedUserName(), userTexts},
                         warnings);
        addMissingGroupId(situation, warnings);
        addFormerGroup(situation, warnings);
        addPublicFolder(situation, warnings);
    } else if (situation.is("addNewGroup:")) {
        addEditedAccount(
            situation, {"/groups", "gid", now.groupName->stringValue(), now.selectedGroupName(), groupTexts},
            warnings);
    } else if (situation.is("addUserToGroup:")) {
        addMembersTwice(situation, warnings);
    } else if (situation.is("removeUserFromGroup:")) {
        addOwnGroup(situation, warnings);
    } else if (situation.is("deleteSelectedGroup:")) {
        addUsersOfDeletedGroup(situation, warnings);
    }
    addNumberOfAccounts(situation.plan, warnings);
    if (platform::Host::current().services().computer != nullptr) {
        addComputersUsers(situation, warnings);
    }
}

} // namespace review
