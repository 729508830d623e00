// What the account tabs list and propose, and what the editors and the Public folders do with it.

#include "support/AccountsFixture.h"

#include <array>
#include <set>
#include <tuple>

namespace {

using Texts = std::vector<std::string>;

TEST_F(AccountsTest, AReportThatCannotBeReadIsLoggedAndTheOtherTableIsStillFilled) {
    const std::string bug =
        "If you are seeing this message a bug has occured.  Please run the following command in the terminal "
        "and email the results to " +
        NSBundle::mainBundle().objectForInfoDictionaryKey("BRSupportAddress") + ".\nnireport . ";
    const std::string groupsBug = bug + "/groups gid name users";
    const std::string usersBug = bug + "/users name uid sharedDir";

    // Which reports fail, counted from 0, what is logged, and how many rows are then listed.
    using Case = std::tuple<const char*, std::set<int>, Texts, int, int>;
    for (const auto& [operation, failing, log, groups, users] :
         std::vector<Case>{{"refreshGroupList:", {0}, {groupsBug}, 0, 3},
                           {"updateSystemUsersGroups:", {0}, {groupsBug}, 0, 3},
                           {"refreshGroupList:", {1}, {usersBug}, 3, 0},
                           {"updateSystemUsersGroups:", {1}, {usersBug}, 3, 0},
                           {"refreshGroupList:", {0, 1}, {groupsBug, usersBug}, 0, 0},
                           {"addUserToGroup:", {0}, {groupsBug}, 0, 3}}) {
        host.onReport = nullptr;
        send("refreshGroupList:");
        selectGroup("staff");
        int report = 0;
        host.onReport = [&report, &failing = failing] {
            if (failing.contains(report++)) {
                throw std::out_of_range("a line lacks a piece");
            }
        };
        host.log.clear();
        send(operation);
        EXPECT_EQ(host.log, log) << operation;
        EXPECT_EQ(app().groupTableView->numberOfRows(), groups) << operation;
        EXPECT_EQ(app().groupUsersTableView->numberOfRows(), users) << operation;
    }
}

TEST_F(AccountsTest, WithoutARowNothingHappens) {
    app().userTableView->deselectAll();
    app().groupTableView->deselectAll();
    host.events.clear();
    for (const char* operation :
         {"deleteSelectedUser:", "deleteSelectedGroup:", "addUserToGroup:", "removeUserFromGroup:",
          "changePassword:", "enableSelectedPublicShare:", "disableSelectedPublicShare:"}) {
        send(operation);
    }
    EXPECT_EQ(host.events, Texts{});
    EXPECT_EQ(NSApp().attachedSheet(), nullptr);
}

TEST_F(AccountsTest, ProposesTheNextFreeIds) {
    const std::vector<std::array<std::string, 4>> cases{
        // highest user id, proposed, highest group id, proposed
        {"502", "503", "501", "502"},
        {"2147483647", "2147483648", "4294967293", "4294967294"},
        {"4294967294", "4294967295", "9223372036854775807", "9223372036854775808"}};
    for (const auto& [user, nextUser, groupId, nextGroup] : cases) {
        addUser("last", user, "20");
        addGroup("last", groupId);
        send("getNextUID:");
        send("getNextGID:");
        EXPECT_EQ(app().uid->stringValue(), nextUser);
        EXPECT_EQ(app().gid->stringValue(), nextGroup);
    }
    for (const auto& [highest, next] : {std::pair{"99", "101"}, {"100", "101"}, {"101", "102"}}) {
        nicl({"-create", "/groups/last", "gid", highest});
        nicl({"-create", "/groups/friends", "gid", "-2"});
        send("getNextGID:");
        EXPECT_EQ(app().gid->stringValue(), next);
    }
    for (const char* path : {"wheel", "staff", "admin", "hundred", "friends", "last"}) {
        nicl({"-delete", std::string("/groups/") + path});
    }
    addGroup("only", "4");
    send("getNextGID:");
    EXPECT_EQ(app().gid->stringValue(), "101");
    nicl({"-delete", "/groups/only"});
    host.events.clear();
    send("getNextGID:");
    EXPECT_EQ(host.events, (Texts{"log No Groups found to update the GID", "beep"}));
    EXPECT_EQ(app().gid->stringValue(), "101");
}

TEST_F(AccountsTest, SystemAccountsAreHiddenUntilTheirBoxIsChecked) {
    using Names = std::vector<std::string>;
    EXPECT_EQ(app().owner->itemTitles(), (Names{"edge", "bob", "adam"}));
    EXPECT_EQ(app().group->itemTitles(), (Names{"staff", "admin", "friends"}));
    EXPECT_EQ(app().groupPopUp->itemTitles(), (Names{"staff", "admin", "friends"}));
    app().showSystemUsersGroups->performClick();
    app().showSystemUsersGroups2->performClick();
    app().showSystemUsersGroups3->performClick();
    EXPECT_EQ(app().owner->itemTitles(), (Names{"root", "low", "edge", "bob", "adam"}));
    EXPECT_EQ(app().group->numberOfItems(), 5);
    EXPECT_EQ(app().groupPopUp->numberOfItems(), 5);
    EXPECT_EQ(app().groupTableView->numberOfRows(), 5);

    // The selected title stays selected, with its id, when the box hides it again and when its group is gone.
    app().groupPopUp->selectItemWithTitle("hundred");
    app().showSystemUsersGroups2->performClick();
    EXPECT_EQ(app().groupPopUp->itemTitles(), (Names{"staff", "admin", "friends", "hundred"}));
    nicl({"-create", "/groups/hundred", "gid", "98"});
    send("updateGroupsList:");
    EXPECT_EQ(app().groupPopUp->tagOfSelectedItem(), 98);
    nicl({"-delete", "/groups/hundred"});
    send("updateGroupsList:");
    EXPECT_EQ(app().groupPopUp->titleOfSelectedItem(), "hundred");
    EXPECT_EQ(app().groupPopUp->tagOfSelectedItem(), 98);
    app().groupPopUp->selectItemAtIndex(-1);
    send("updateGroupsList:");
    EXPECT_EQ(app().groupPopUp->indexOfSelectedItem(), -1);
    app().owner->selectItemWithTitle("low");
    app().group->selectItemWithTitle("friends");
    EXPECT_EQ(app().group->tagOfSelectedItem(), 0);
    app().group->selectItemWithTitle("wheel");
    app().showSystemUsersGroups->performClick();
    EXPECT_EQ(app().owner->titleOfSelectedItem(), "low");
    EXPECT_EQ(app().group->titleOfSelectedItem(), "wheel");
}

TEST_F(AccountsTest, FieldsAndButtonsFollowTheRowAndTheTypedName) {
    selectUser("bob");
    EXPECT_EQ(app().shortName->stringValue() + app().uid->stringValue() + app().fullName->stringValue(),
              "bob501Bob B");
    EXPECT_EQ(app().groupPopUp->titleOfSelectedItem(), "staff");
    EXPECT_EQ(app().addNewUserButton->title(), "Update User");
    EXPECT_TRUE(app().deleteUserButton->isEnabled());
    EXPECT_TRUE(app().enablePublicSelectedButton->isEnabled());
    nicl({"-create", "/users/bob", "gid", "4711"});
    send("refreshPublicList:");
    send("updateUserTextFields:");
    EXPECT_EQ(app().groupPopUp->indexOfSelectedItem(), -1);
    app().showSystemUsersGroups2->performClick();
    addGroup("large", "3000000000");
    nicl({"-create", "/groups/bare"});
    send("updateGroupsList:");
    EXPECT_GE(app().groupPopUp->indexOfItemWithTitle("bare"), 0);
    for (const auto& [gid, title] : std::vector<std::pair<Texts, std::optional<std::string>>>{
             {{"3000000000"}, "large"}, {{}, "wheel"}, {{"4711"}, std::nullopt}, {{""}, "wheel"}}) {
        Texts operation = {"-create", "/users/bob", "gid"};
        operation.insert(operation.end(), gid.begin(), gid.end());
        nicl(operation);
        send("refreshPublicList:");
        send("updateUserTextFields:");
        EXPECT_EQ(app().groupPopUp->titleOfSelectedItem(), title);
    }
    app().userTableView->deselectAll();
    EXPECT_EQ(app().shortName->stringValue() + app().uid->stringValue() + app().fullName->stringValue(), "");
    EXPECT_FALSE(app().changePasswordButton->isEnabled());
    EXPECT_TRUE(app().shortName->proposeEdit("adam", 4, {0, 0}));
    EXPECT_EQ(app().addNewUserButton->title(), "Update User");
    EXPECT_TRUE(app().shortName->proposeEdit("low", 3, {0, 4}));
    EXPECT_EQ(app().addNewUserButton->title(), "Add New User");
    EXPECT_TRUE(app().groupName->proposeEdit("staff", 5, {0, 0}));
    EXPECT_EQ(app().createNewGroupButton->title(), "Update Group");
}

TEST_F(AccountsTest, AReloadThatDropsTheSelectedRowLeavesItsEditorAlone) {
    selectGroup("friends"); // the last
    host.answerAlert("Confirm Delete Selected Group", "Yes");
    send("deleteSelectedGroup:");
    EXPECT_EQ(app().groupTableView->selectedRow(), -1);
    EXPECT_EQ(app().groupName->stringValue() + app().createNewGroupButton->title(), "friendsUpdate Group");
    selectUser("adam");
    nicl({"-delete", "/users/adam"});
    send("refreshPublicList:");
    EXPECT_EQ(app().userTableView->selectedRow(), -1);
    EXPECT_EQ(app().shortName->stringValue() + app().addNewUserButton->title(), "adamUpdate User");
    host.events.clear();
    for (const char* operation : {"deleteSelectedGroup:", "addUserToGroup:", "deleteSelectedUser:",
                                  "changePassword:", "enableSelectedPublicShare:"}) {
        send(operation); // enabled, but there is nothing to act on
    }
    EXPECT_EQ(host.events, Texts{});
}

TEST_F(AccountsTest, TheButtonsForThePublicFolderLeaveTheEditorsMenuAlone) {
    selectUser("bob");
    app().fullName->setStringValue("Typed");
    for (const char* operation : {"enableAllPublicShares:", "enableSelectedPublicShare:"}) {
        send(operation);
        EXPECT_EQ(columnOf("userTableView", "Public Shared").at(1), "YES");
        EXPECT_EQ(app().publicSharedPopUp->indexOfSelectedItem(), 1);
    }
    takeRuns();
    host.answerAlert("Confirm Update User", "Yes");
    send("addNewUser:");
    EXPECT_EQ(takeRuns().back(), "/usr/bin/nicl . -create /users/bob sharedDir <no value>");
}

TEST_F(AccountsTest, PublicFoldersAreSharedByIdAndTheServerToldOnce) {
    host.onListing = [](const std::string& command) {
        return std::optional<std::string>(command.find("Apple") != std::string::npos ? "210\n" : "");
    };
    const auto run = [](const std::string& name, const std::string& value) {
        return "/usr/bin/nicl . -create /users/" + name + " sharedDir " + value;
    };
    send("enableAllPublicShares:");
    EXPECT_EQ(takeRuns(), (Texts{run("bob", "Public"), run("adam", "Public"), "/bin/kill -1 210"}));
    send("disableAllPublicShares:");
    EXPECT_EQ(takeRuns(), (Texts{run("edge", "<no value>"), run("bob", "<no value>"),
                                 run("adam", "<no value>"), "/bin/kill -1 210"}));
    selectUser("edge");
    send("enableSelectedPublicShare:");
    EXPECT_EQ(takeRuns(), (Texts{run("edge", "Public"), "/bin/kill -1 210"}));
    selectUser("edge");
    send("updateUserTextFields:");
    EXPECT_EQ(app().publicSharedPopUp->indexOfSelectedItem(), 0);
    send("disableSelectedPublicShare:");
    EXPECT_EQ(takeRuns(), (Texts{run("edge", "<no value>"), "/bin/kill -1 210"}));

    host.onRun = [&, this](const RecordedRun& tried) {
        return tried.text() == run("bob", "Public") ? TestHost::RunAnswer{"no room", 0} : carryOut(tried);
    };
    send("enableAllPublicShares:");
    EXPECT_EQ(takeRuns(), (Texts{run("bob", "Public"), run("adam", "Public"), "/bin/kill -1 210"}));
    EXPECT_EQ(columnOf("userTableView", "Public Shared"), (Texts{"NO", "NO", "YES"})) << "as stored";
    host.rightHeld = host.administratorAllows = false;
    nicl({"-create", "/users/bob", "sharedDir", "Public"}); // by somebody else
    host.events.clear();
    send("disableAllPublicShares:");
    EXPECT_EQ(host.events, Texts(4, "administrator refuse")) << "for each of three users, and the server";
    EXPECT_EQ(columnOf("userTableView", "Public Shared"), (Texts{"NO", "YES", "YES"}));
}

} // namespace
