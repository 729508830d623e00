// Adding, changing and deleting users and groups.

#include "support/AccountsFixture.h"

#include <array>
#include <map>
#include <tuple>

namespace {

using Titles = std::vector<std::string>;
using Runs = std::vector<std::string>;

TEST_F(AccountsTest, ANewUserIsMadeGetsAPasswordSheetAndJoinsItsGroup) {
    fillUser("Alice A", "alice", "503");
    app().groupPopUp->selectItemWithTitle("friends");
    app().publicSharedPopUp->selectItemAtIndex(0);
    host.answerAlert("Confirm Add New File Sharing Only User", "Yes");
    send("addNewUser:");
    const std::string create = "/usr/bin/nicl . -create /users/alice";
    EXPECT_EQ(host.runs.at(1).arguments, (Runs{".", "-create", "/users/alice", "realname", "Alice A"}));
    EXPECT_EQ(takeRuns(),
              (Runs{create, create + " realname Alice A", create + " gid 501", create + " uid 503",
                    create + " sharedDir Public", create + " _shadow_passwd", create + " hint",
                    create + " _writers_hint alice", create + " _writers_passwd alice",
                    create + " home /dev/null", create + " passwd !", create + " shell /sbin/nologin",
                    "/usr/bin/nicl . -append /groups/friends users alice"}));
    ASSERT_EQ(NSApp().attachedSheet(), app().passwordWindow);

    app().passwordSecureText1->setStringValue("a");
    app().passwordSecureText2->setStringValue("b");
    send("setPassword:");
    EXPECT_EQ(app().passwordErrorText->stringValue(), "Passwords Do Not Match");
    app().passwordSecureText2->setStringValue("");
    app().passwordSecureText1->setStringValue("");
    send("setPassword:");
    EXPECT_EQ(app().passwordErrorText->stringValue(), "Password Fields Empty");
    EXPECT_TRUE(host.runs.empty());
    app().passwordSecureText1->setStringValue("s3cret");
    app().passwordSecureText2->setStringValue("s3cret");
    send("setPassword:");
    EXPECT_EQ(takeRuns(), Runs{"/usr/bin/dscl . -passwd /Users/alice s3cret"});
    EXPECT_EQ(NSApp().attachedSheet(), nullptr);
    EXPECT_FALSE(app().passwordWindow->isVisible());
    EXPECT_EQ(app().passwordSecureText1->stringValue() + app().passwordSecureText2->stringValue(), "");
    for (const std::string& line : host.log) {
        EXPECT_EQ(line.find("s3cret"), std::string::npos) << line;
    }
    selectUser("alice");
    EXPECT_EQ(app().fullName->stringValue(), "Alice A");
    EXPECT_EQ(app().groupPopUp->titleOfSelectedItem(), "friends");
    EXPECT_EQ(app().publicSharedPopUp->indexOfSelectedItem(), 0);
}

TEST_F(AccountsTest, ACreationThatFailsAsksForNoPasswordAndStillJoinsTheGroup) {
    host.onRun = [](const RecordedRun& run) {
        return TestHost::RunAnswer{run.text().find(" uid ") != std::string::npos ? "no\n" : "", 0};
    };
    fillUser("Alice A", "alice", "503");
    app().groupPopUp->selectItemWithTitle("friends");
    host.answerAlert("Confirm Add New File Sharing Only User", "Yes");
    send("addNewUser:");
    EXPECT_EQ(takeRuns().back(), "/usr/bin/nicl . -append /groups/friends users alice");
    EXPECT_EQ(NSApp().attachedSheet(), nullptr);
    EXPECT_EQ(host.beeps, 1);
}

TEST_F(AccountsTest, MakingAndDeletingAUserLeavesTheDirectoryUnchanged) {
    const auto directory = [this] {
        const Runs words{".",   "/users",    "name", "realname", "gid",
                         "uid", "sharedDir", "home", "passwd",   "shell"};
        return groups() + tools::runNireport(words).output;
    };
    const auto reported = [&](const std::string& line) {
        return directory().find(line) != std::string::npos;
    };
    const std::string before = directory();
    fillUser("Alice A", "alice", "503");
    app().groupPopUp->selectItemWithTitle("friends");
    host.answerAlert("Confirm Add New File Sharing Only User", "Yes");
    send("addNewUser:");
    app().passwordSecureText1->setStringValue("s3cret");
    app().passwordSecureText2->setStringValue("s3cret");
    send("setPassword:");
    selectGroup("staff");
    selectRow(*app().groupUsersTableView, "User", "alice");
    send("addUserToGroup:");
    EXPECT_TRUE(reported("alice\tAlice A\t501\t503\t<no value>\t/dev/null\t!\t/sbin/nologin\t\n"));
    EXPECT_TRUE(reported("staff\t20\tbob,alice\t\n"));
    EXPECT_TRUE(reported("friends\t501\tbob,adam,alice\t\n"));

    fillUser("Alice B", "alice", "504");
    app().publicSharedPopUp->selectItemAtIndex(0);
    host.answerAlert("Confirm Update User", "Yes");
    send("addNewUser:");
    EXPECT_TRUE(reported("alice\tAlice B\t501\t504\tPublic\t/dev/null\t!\t/sbin/nologin\t\n"));

    selectUser("alice");
    host.answerAlert("Confirm Delete Selected User", "Yes");
    send("deleteSelectedUser:");
    EXPECT_EQ(host.alerts.back().message, "Are you sure you want to delete the user alice?");
    EXPECT_EQ(directory(), before);
    EXPECT_EQ(host.beeps, 0);
}

TEST_F(AccountsTest, EachUserGetsItsOwnQuestion) {
    using Answers = std::vector<std::pair<std::string, std::string>>;
    const auto update = [](const std::string& gid, const std::string& uid) {
        const std::string bob = "/usr/bin/nicl . -create /users/bob ";
        return Runs{bob + "realname F", bob + "gid " + gid, bob + "uid " + uid, bob + "sharedDir <no value>"};
    };
    Runs joins = update("100", "501");
    joins.emplace_back("/usr/bin/nicl . -append /groups/hundred users bob");
    const std::pair<std::string, std::string> add{"Confirm Add New File Sharing Only User", "Yes"};
    const std::pair<std::string, std::string> change{"Confirm Update User", "Yes"};
    const std::vector<std::tuple<std::string, std::string, std::string, Answers, Runs>> cases{
        {"new", "9", "friends", {{add.first, "No"}}, {}},
        {"new", "501", "friends", {add, {"UID is Not Unique", "No"}}, {}},
        {"adam", "502", "friends", {{"Confirm Update Admin User", "No"}}, {}},
        {"eve", "503", "friends", {{change.first, "No"}}, {}}, // in that group, but not listed as its member
        {"low", "99", "friends", {{change.first, "No"}}, {}},  // hidden from the list, but not new
        // An update does not check the id, and does not append a member again.
        {"bob", "502", "friends", {change}, update("501", "502")},
        {"bob", "501", "hundred", {change}, joins},
        {"bob", "501", "", {change}, update("100", "501")},
    };
    const std::map<std::string, std::string> questions{
        {add.first,
         "Are you sure you want to add a new File Sharing Only User?  If you want to add a standard user, "
         "please visit the Users Control Panel."},
        {change.first, "Are you sure you want to update the selected user?"},
        {"Confirm Update Admin User",
         "Are you sure you want to update the selected admin user?  If you proceed, this user may lose admin "
         "privileges."},
        {"UID is Not Unique",
         "The UID entered is not unique.  If you add a new user with a non-unique UID, the results will be "
         "unpredictable.  Do you wish to add a new File Sharing Only User?"}};
    addUser("eve", "503", "80");
    app().showSystemUsersGroups2->performClick();
    for (const auto& [name, uid, group, answers, runs] : cases) {
        fillUser("F", name, uid);
        app().groupPopUp->selectItemAtIndex(app().groupPopUp->indexOfItemWithTitle(group));
        app().publicSharedPopUp->selectItemAtIndex(1);
        Titles titles;
        for (const auto& [title, button] : answers) {
            host.answerAlert(title, button);
            titles.push_back(title);
        }
        host.alerts.clear();
        send("addNewUser:");
        EXPECT_EQ(takeRuns(), runs) << name;
        EXPECT_EQ(alertTitles(), titles);
        for (const platform::Alert& alert : host.alerts) {
            EXPECT_EQ(alert.message, questions.at(alert.title));
            EXPECT_EQ(alert.defaultButton, "No");
        }
        EXPECT_EQ(NSApp().attachedSheet(), nullptr);
    }
}

TEST_F(AccountsTest, NamesTheFieldsThatAreEmpty) {
    const std::string start =
        "To add a New User all fields must have a valid value.  The following field(s) were left empty:\n";
    using Case = std::array<std::string, 5>;
    for (const auto& [full, name, uid, group, empty] :
         std::vector<Case>{{"", "", "", "", "Full Name, Short Name, UID, Group"},
                           {"", "x", "", "friends", "Full Name, UID"},
                           {"F", "", "9", "friends", "Short Name"},
                           {"F", "", "9", "", "Short Name, Group"},
                           {"F", "x", "", "friends", "UID"},
                           {"", "bob", "9", "", "Full Name"}}) {
        fillUser(full, name, uid);
        app().groupPopUp->selectItemAtIndex(app().groupPopUp->indexOfItemWithTitle(group));
        host.answerAlert(name == "bob" ? "Confirm Update User" : "Confirm Add New File Sharing Only User",
                         "Yes");
        host.answerAlert("User Fields Empty", "OK");
        send("addNewUser:");
        EXPECT_EQ(host.alerts.back().message, start + empty);
    }
    for (const auto& [name, id, message] : std::vector<std::array<std::string, 3>>{
             {"", "", "Group Name, GID"}, {"", "9", "Group Name"}, {"x", "", "GID"}}) {
        fillGroup(name, id);
        host.answerAlert("Confirm Add New Group", "Yes");
        host.answerAlert("Group Fields Empty", "OK");
        send("addNewGroup:");
        EXPECT_TRUE(host.alerts.back().message.ends_with(" were left empty:\n" + message));
    }
    EXPECT_TRUE(host.runs.empty());
}

TEST_F(AccountsTest, NoReadsTheListsAgainButARefusalLeavesThemAlone) {
    // Each action and its alerts with their answers; whether the lists are read again afterwards.
    using Answers = std::vector<std::pair<std::string, std::string>>;
    const std::string newUser = "Confirm Add New File Sharing Only User";
    const std::vector<std::tuple<const char*, Answers, bool>> cases{
        {"addNewUser:", {{newUser, "No"}}, true},
        {"addNewUser:", {{newUser, "Yes"}, {"User Fields Empty", "OK"}}, false},
        {"addNewGroup:", {{"Confirm Add New Group", "No"}}, true},
        {"addNewGroup:", {{"Confirm Add New Group", "Yes"}, {"Group Fields Empty", "OK"}}, false},
        {"deleteSelectedUser:", {{"Confirm Delete Selected User", "No"}}, true},
        {"deleteSelectedUser:", {{"Admin Users Cannot Be Deleted", "Cancel"}}, false}};
    for (const auto& [operation, answers, isRead] : cases) {
        selectUser(answers.front().second == "Cancel" ? "adam" : "bob");
        fillUser("", "new", "");
        fillGroup("new", "");
        addGroup("outside", "700"); // by somebody else
        for (const auto& [title, button] : answers) {
            host.answerAlert(title, button);
        }
        send(operation);
        EXPECT_EQ(app().group->indexOfItemWithTitle("outside") >= 0, isRead)
            << operation << " " << answers.back().first;
        nicl({"-delete", "/groups/outside"});
        app().group->selectItemAtIndex(0);
        send("updateUsersGroupsList:");
    }
}

TEST_F(AccountsTest, GroupsAreMadeChangedAndDeleted) {
    const std::string create = "/usr/bin/nicl . -create /groups/club";
    fillGroup("club", "501");
    host.answerAlert("Confirm Add New Group", "Yes");
    host.answerAlert("GID is Not Unique", "No");
    send("addNewGroup:");
    EXPECT_EQ(takeRuns(), Runs{});
    host.answerAlert("Confirm Add New Group", "Yes");
    host.answerAlert("GID is Not Unique", "Yes");
    send("addNewGroup:");
    EXPECT_EQ(takeRuns(), (Runs{create, create + " gid 501", create + " passwd *", create + " users"}));
    EXPECT_GE(app().groupPopUp->indexOfItemWithTitle("club"), 0);
    for (const char* number : {"600", "501"}) { // the other group's number is not looked for
        host.answerAlert("Confirm Update Group", "Yes");
        fillGroup("club", number);
        send("addNewGroup:");
        EXPECT_EQ(takeRuns(), Runs{create + " gid " + number});
    }
    const std::map<std::string, std::string> questions{
        {"Confirm Add New Group", "Are you sure you want to add a new Group?"},
        {"Confirm Update Group", "Are you sure you want to update the selected group?"},
        {"GID is Not Unique",
         "The GID entered is not unique.  If you add a new group with a non-unique GID, the results will be "
         "unpredictable.  Do you wish to add a new Group?"}};
    for (const platform::Alert& alert : host.alerts) {
        EXPECT_EQ(alert.message, questions.at(alert.title));
        EXPECT_EQ(alert.defaultButton, "No");
    }

    app().groupTableView->deselectAll();
    send("deleteSelectedGroup:");
    selectGroup("club");
    host.answerAlert("Confirm Delete Selected Group", "Yes");
    send("deleteSelectedGroup:");
    EXPECT_EQ(host.alerts.back().message, "Are you sure you want to delete the group club?");
    EXPECT_EQ(takeRuns(), Runs{"/usr/bin/nicl . -delete /groups/club"});
    EXPECT_EQ(groups().find("club"), std::string::npos);
}

TEST_F(AccountsTest, ADeletedUserLeavesEveryGroup) {
    selectUser("adam");
    host.answerAlert("Admin Users Cannot Be Deleted", "Cancel");
    send("deleteSelectedUser:");
    EXPECT_EQ(host.alerts.back().message,
              "adam is an admin user.  Brindle will not delete admin users.  If you want to delete an admin "
              "user, open the Accounts preference pane in the System Preferences application.");
    selectUser("bob");
    host.answerAlert("Confirm Delete Selected User", "No");
    send("deleteSelectedUser:");
    EXPECT_EQ(takeRuns(), Runs{});
    host.answerAlert("Confirm Delete Selected User", "Yes");
    send("deleteSelectedUser:");
    EXPECT_EQ(takeRuns(),
              (Runs{"/usr/bin/nicl . -delete /users/bob", "/usr/bin/nicl . -delete /groups/staff users bob",
                    "/usr/bin/nicl . -delete /groups/friends users bob"}));
    EXPECT_EQ(groups(),
              "wheel\t0\troot\t\nstaff\t20\t#NoValue#\t\nadmin\t80\troot,adam\t\nhundred\t100\t#NoValue#\t\n"
              "friends\t501\tadam\t\n");
    // The next user has taken the row's place.
    EXPECT_EQ(app().shortName->stringValue(), "adam");
}

TEST_F(AccountsTest, MembershipFollowsTheSelectedRowsInOrder) {
    send("addUserToGroup:"); // does nothing without a selected group
    selectGroup("staff");
    ASSERT_EQ(app().groupUsersTableView->numberOfRows(), 3); // edge, bob, adam
    app().groupUsersTableView->selectRows({2, 1, 0});
    send("addUserToGroup:");
    EXPECT_EQ(takeRuns(), (Runs{"/usr/bin/nicl . -append /groups/staff users edge",
                                "/usr/bin/nicl . -append /groups/staff users adam"}));
    app().groupUsersTableView->selectRows({1, 2});
    send("removeUserFromGroup:");
    EXPECT_EQ(takeRuns(), (Runs{"/usr/bin/nicl . -delete /groups/staff users bob",
                                "/usr/bin/nicl . -delete /groups/staff users adam"}));
    EXPECT_NE(groups().find("staff\t20\tedge\t"), std::string::npos);
}

} // namespace
