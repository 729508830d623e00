#include "support/SurprisesFixture.h"

#include <algorithm>

namespace {

TEST_F(Surprises, ThereAreNoneWhenOnlyWhatWasTouchedChanges) {
    begin();
    EXPECT_EQ(warningsOf("updateSMBProperties:"), "");
    type("smbWorkGroup", "HOME");
    click("smbWorkGroupMaster");
    EXPECT_EQ(warningsOf("updateSMBProperties:"), "");
    selectShare("Docs");
    EXPECT_EQ(warningsOf("createShare:"), "");
    EXPECT_EQ(warningsOf("deleteShare:"), "");
    choose("everyonePrivs", 3);
    choose("sharingAFS", 0);
    EXPECT_EQ(warningsOf("createShare:"), "");
    newShare("New", folder("new"));
    choose("sharingSMB", 1);
    EXPECT_EQ(warningsOf("createShare:"), "");
}

TEST_F(Surprises, AChangeBySomebodyElseIsReportedUntilTheFileIsReadAgain) {
    begin();
    writeConf(plainConf("wins support = yes\n"));
    EXPECT_TRUE(reviewer->hasSMBConfChangedOnDisk());
    EXPECT_EQ(warningsOf("updateSMBProperties:"), "changed-outside");
    selectShare("Docs");
    type("smbWorkGroup", "UNSAVED");
    std::filesystem::remove(host.root() / "etc/smb.conf");
    EXPECT_NE(sentence("createShare:", "changed-outside").find("deleted smb.conf"), std::string::npos);
    writeConf("[global]\nworkgroup = THEIRS\n[Extra]\npath = " + films + "\nguest ok = yes\n");
    reviewer->reread();
    EXPECT_FALSE(reviewer->hasSMBConfChangedOnDisk());
    EXPECT_EQ(text("smbWorkGroup"), "THEIRS");
    EXPECT_EQ(text("shareName"), "Docs");
    EXPECT_EQ(columnOf("normalTableView", "SMB"), (std::vector<std::string>{"-", "+"}));
}

TEST_F(Surprises, LinesThatASaveLosesOrMovesAreNamed) {
    writeConf(plainConf("stray\n", "# by hand\nbrowseable = yes\n"));
    begin();
    EXPECT_EQ(warningsOf("updateSMBProperties:"), "lines-lost");
    const review::Plan plan = reviewer->planSend("updateSMBProperties:");
    ASSERT_EQ(plan.warnings.size(), 2U);
    EXPECT_EQ(plan.warnings[0].sentence, "Saving does not keep these lines of smb.conf: line 8 \"stray\".");
    EXPECT_EQ(plan.warnings[1].sentence,
              "Saving moves these lines of smb.conf to another place: line 16 \"# by hand\".");
    selectShare("Docs");
    const auto moves = [](const review::Remark& warning) {
        return warning.sentence.find("moves") != std::string::npos;
    };
    EXPECT_TRUE(std::ranges::none_of(reviewer->planSend("deleteShare:").warnings, moves)); // it is deleted
    send("updateSMBProperties:");
    EXPECT_EQ(warningsOf("updateSMBProperties:"), ""); // there is nothing left to lose
}

TEST_F(Surprises, ASectionRemovedWithMoreThanTheEditorShowsIsNamed) {
    writeConf(plainConf("", "veto files = /x/\n"));
    begin();
    selectShare("Docs");
    EXPECT_EQ(sentence("deleteShare:", "section-removed"),
              "The section [Docs] of smb.conf is removed, with settings that Brindle did not write: \"veto "
              "files\".");
    writeConf("[Docs]\npath = /elsewhere\n");
    reviewer->reread();
    selectShare("Docs");
    EXPECT_NE(sentence("deleteShare:", "section-removed").find("\"/elsewhere\""), std::string::npos);
    writeConf(plainConf());
    reviewer->reread();
    control<NSTableView>("normalTableView").deselectAll();
    newShare("Docs", docs); // not selected, so the editor did not show it
    EXPECT_NE(warningsOf("createShare:").find("section-removed"), std::string::npos);
}

TEST_F(Surprises, ARecordRemovedUnaskedIsNamed) {
    nicl({"-create", "/config/Brindle/Docs", "comment", "mine"});
    nicl({"-create", "/config/Brindle/Old"});
    nicl({"-create", "/config/Brindle/Old", "directory_path", films});
    host.answerAlert("Shares Are Not Updated for Jaguar", "No");
    begin();
    selectShare("Docs");
    EXPECT_EQ(sentence("deleteShare:", "record-removed"),
              "The record of the share \"Docs\" is removed, with properties that Brindle did not write: "
              "\"comment\".");
    const review::Plan migration = reviewer->planMigration();
    EXPECT_EQ(migration.runs.size(), 21U); // three records, each deleted and made again with its properties
    EXPECT_EQ(migration.warnings.size(), 1U);
}

TEST_F(Surprises, AFolderWhoseOwnerChangesUnseenOrIsLockedOutIsNamed) {
    begin();
    type("shareName", "New");
    type("directory", folder("private", 0750)); // typed, so the menus show another folder or none
    EXPECT_EQ(warningsOf("createShare:"), ::geteuid() == 0 ? "owner-changes mode-changes owner-locked-out"
                                                           : "mode-changes owner-locked-out");
    choose("owner", "bob");
    choose("group", "staff");
    choose("ownerPrivs", 0);
    choose("groupPrivs", 1);
    EXPECT_EQ(warningsOf("createShare:"), "mode-changes"); // 0750 cannot be written: everyone may search
    choose("everyonePrivs", 3);
    EXPECT_EQ(warningsOf("createShare:"), "");
}

TEST_F(Surprises, AFolderInTheWrongPlaceIsNamed) {
    begin();
    type("shareName", "New");
    choose("sharingSMB", 1);
    for (const auto& [path, code] :
         std::vector<std::pair<std::string, std::string>>{{"/nowhere/at all", "no-folder"},
                                                          {"relative", "relative-folder"},
                                                          {"/etc", "system-folder"},
                                                          {docs, "folder-shared-twice"},
                                                          {folder("50%Um"), "unreachable"},
                                                          {folder("docs/inside"), "folder-inside-share"}}) {
        type("directory", path);
        const std::string said = sentence("createShare:", code);
        EXPECT_NE(said.find("\"" + path + "\""), std::string::npos) << said;
    }
    std::filesystem::create_directory_symlink(folder("docs/linked"), host.root() / "link");
    type("directory", (host.root() / "link").string());
    EXPECT_NE(sentence("createShare:", "folder-inside-share").find("\"Docs\""), std::string::npos);
    type("directory", "\"/in\"");
    EXPECT_NE(sentence("createShare:", "relative-folder").find(" \"/in\" is in quotes"), std::string::npos);
    selectShare("Docs");
    EXPECT_EQ(sentence("createShare:", "folder-inside-share"), ""); // a share is not inside itself
}

TEST_F(Surprises, ANameInAnotherCaseIsNamed) {
    begin();
    newShare("DOCS", folder("new"));
    EXPECT_EQ(warningsOf("createShare:"), "name-case");
    type("groupName", "Staff");
    type("gid", "600");
    EXPECT_EQ(warningsOf("addNewGroup:"), "name-case");
    type("shortName", "BOB");
    type("fullName", "B");
    type("uid", "600");
    EXPECT_EQ(sentence("addNewUser:", "name-case"),
              "The name \"BOB\" differs from the user \"bob\" only in the case of letters.");
    const review::Plan plan = reviewer->planSend("addNewUser:");
    ASSERT_EQ(plan.blocks.size(), 1U);
    EXPECT_EQ(
        plan.blocks[0].sentence,
        "\"BOB\" cannot be used: there is a user called bob, and the case of letters does not tell users "
        "apart; choose another name.");
}

TEST_F(Surprises, AnAccountThatIsOverwrittenUnselectedAndAnIdThatChangesAreNamed) {
    begin();
    type("shortName", "bob");
    type("fullName", "B");
    type("uid", "501");
    EXPECT_EQ(warningsOf("addNewUser:"), "overwrites-account");
    selectRow(*app().userTableView, "User", "bob");
    type("fullName", "Bob");
    EXPECT_EQ(warningsOf("addNewUser:"), "");
    type("uid", "777");
    EXPECT_EQ(sentence("addNewUser:", "id-changes"),
              "The id of the user \"bob\" changes from 501 to 777: existing files and the password for "
              "Windows keep the old id.");
    type("groupName", "staff");
    type("gid", "21");
    EXPECT_EQ(warningsOf("addNewGroup:"), "overwrites-account id-changes");
    selectRow(*app().groupTableView, "Group", "staff");
    selectRow(*app().groupUsersTableView, "User", "adam");
    EXPECT_EQ(warningsOf("addUserToGroup:"), "");
    nicl({"-append", "/groups/staff", "users", "adam"});
    EXPECT_EQ(warningsOf("addUserToGroup:"), "member-already");
}

TEST_F(Surprises, RightsThatUsersKeepAreNamed) {
    addGroup("crew", "600");
    nicl({"-create", "/users/bob", "gid", "600"});
    nicl({"-append", "/groups/crew", "users", "bob", "adam"});
    begin();
    selectRow(*app().groupTableView, "Group", "crew");
    selectRow(*app().groupUsersTableView, "User", "bob");
    EXPECT_EQ(
        sentence("removeUserFromGroup:", "keeps-rights"),
        "\"crew\" is also the own group of these users, who keep its rights until they are given another "
        "one: \"bob\".");
    EXPECT_EQ(warningsOf("deleteSelectedGroup:"), "keeps-rights");
    selectRow(*app().userTableView, "User", "bob");
    choose("groupPopUp", "staff");
    EXPECT_EQ(warningsOf("addNewUser:"), "keeps-rights");
    selectRow(*app().groupUsersTableView, "User", "adam");
    EXPECT_EQ(warningsOf("removeUserFromGroup:"), "");
}

TEST_F(Surprises, AMissingGroupIdReadsAsZeroAndIsNamed) {
    addGroup("wheel", "0");
    nicl({"-create", "/groups/bare"});
    nicl({"-delete", "/users/bob", "gid"});
    begin();
    click("showSystemUsersGroups2");
    selectRow(*app().userTableView, "User", "bob");
    type("fullName", "Bob");
    EXPECT_EQ(sentence("addNewUser:", "untouched-setting"),
              "The user \"bob\" has no group id and gets the id 0, although nobody touched that menu.");
    choose("groupPopUp", "wheel");
    EXPECT_EQ(warningsOf("addNewUser:"), "");
    app().groupPopUp->selectItemAtIndex(-1); // keeps the record's, which is none
    EXPECT_EQ(warningsOf("addNewUser:"), "");
    for (const char* user : {"bob", "adam"}) {
        selectRow(*app().userTableView, "User", user);
        type("fullName", "Adam or Bob");
        choose("groupPopUp", "bare");
        EXPECT_EQ(sentence("addNewUser:", "id-changes"), "The group \"bare\" has no id: the user \"" +
                                                             std::string(user) + "\" gets the group id 0.");
    }
}

TEST_F(Surprises, AnUpdateThatTakesBackWhatAButtonDidToThePublicFolderIsNamed) {
    begin();
    for (const auto& [operation, end] : {std::pair("enableSelectedPublicShare:", "no longer be shared"),
                                         {"disableSelectedPublicShare:", "be shared"}}) {
        app().userTableView->deselectAll();
        selectRow(*app().userTableView, "User", "bob");
        type("fullName", "Bob");
        send(operation);
        EXPECT_EQ(sentence("addNewUser:", "untouched-setting"),
                  "The Public folder of the user \"bob\" will " + std::string(end) +
                      ", although nobody touched that menu.");
    }
    choose("publicSharedPopUp", 0);
    EXPECT_EQ(warningsOf("addNewUser:"), "");
}

TEST_F(Surprises, ASettingThatChangesUntouchedIsNamed) {
    std::string conf = plainConf();
    conf.replace(conf.find("local master = yes"), 18, "local master = Yes");
    conf.replace(conf.find("guest ok = No"), 13, "guest ok = true");
    writeConf(conf);
    begin();
    EXPECT_EQ(sentence("updateSMBProperties:", "untouched-setting"),
              "\"local master\" in the section [global] of smb.conf changes from \"Yes\" to \"no\", although "
              "nobody "
              "touched its control.");
    writeConf(plainConf() + "[homes]\nwritable = yes\n");
    reviewer->reread();
    EXPECT_EQ(
        sentence("updateSMBProperties:", "untouched-setting"),
        "\"writable = yes\" in the section [homes] of smb.conf is replaced by \"read only = yes\", although "
        "nobody touched its control.");
    writeConf(conf);
    reviewer->reread();
    selectShare("Docs");
    EXPECT_NE(sentence("createShare:", "untouched-setting").find("\"guest ok\""), std::string::npos);
    nicl({"-create", "/config/Brindle/Films", "afp_use_parent_privs", "1"});
    newShare("Films", films); // over the existing record, with every box off
    EXPECT_NE(sentence("createShare:", "untouched-setting").find("\"afp_use_parent_privs\""),
              std::string::npos);
    type("greeting", "Hello");
    const review::Plan afp = reviewer->planSend("updateAFSProperties:");
    EXPECT_NE(std::ranges::find(afp.afpSettings, "loginGreeting", &review::SettingChange::key),
              afp.afpSettings.end());
    EXPECT_TRUE(std::ranges::none_of(afp.warnings, [](const review::Remark& warning) {
        return warning.sentence.find("loginGreeting") != std::string::npos;
    }));
    EXPECT_NE(sentence("updateAFSProperties:", "untouched-setting"), ""); // keys that the file lacks
}

TEST_F(Surprises, GuestsWhoMayWriteAndManyAccountsAreReported) {
    begin();
    newShare("New", folder("new"));
    choose("sharingSMB", 1);
    click("guestAccessButton");
    EXPECT_EQ(warningsOf("createShare:"), "guests-write");
    writeConf("[Docs]\npath = " + docs + "\n");
    reviewer->reread();
    selectShare("Docs");
    choose("everyonePrivs", 0);
    std::filesystem::remove_all(host.home());
    EXPECT_EQ(warningsOf("createShare:"), "home-unwritable read-only-section");
    reviewer->setServesPerson(false);
    EXPECT_EQ(warningsOf("createShare:"), "");
    for (int user = 0; user < 20; ++user) {
        addUser("u" + std::to_string(user), std::to_string(600 + user));
    }
    EXPECT_EQ(sentence("disableAllPublicShares:", "many-accounts"),
              "22 accounts change, from \"adam\" to \"u9\".");
}

TEST_F(Surprises, SettingsThatTheServerReadsDifferentlyAreNamed) {
    writeConf(plainConf("Workgroup = OTHER\n", "Public = yes\n") +
              "[GLOBALS]\nserver string = x\n[HOMES]\n[Home s]\n");
    begin();
    EXPECT_NE(sentence("updateSMBProperties:", "server-reads-otherwise").find("\"Workgroup = OTHER\""),
              std::string::npos);
    selectShare("Docs");
    EXPECT_EQ(sentence("createShare:", "server-reads-otherwise"),
              "The SMB server follows \"Public = yes\" in the section [Docs], which Brindle does not show.");
    const auto all = reviewer->otherReadings();
    const auto tells = [&](const std::string& words) {
        return std::ranges::any_of(
            all, [&](const auto& each) { return each.second.find(words) != std::string::npos; });
    };
    EXPECT_TRUE(tells("[GLOBALS]"));
    EXPECT_TRUE(tells("[HOMES]"));
    EXPECT_FALSE(tells("[Home s]")) << "a share like any other to the server";
    EXPECT_EQ(all.count("Docs"), 1U);
    EXPECT_EQ(all.count("Films"), 0U);
}

TEST_F(Surprises, TheServersOwnComplaintIsReported) {
    if (!std::filesystem::exists("/usr/bin/testparm")) {
        GTEST_SKIP() << "testparm is not installed";
    }
    writeConf(plainConf("no such key = 1\n"));
    begin();
    EXPECT_EQ(sentence("updateSMBProperties:", "server-complains"), ""); // the old file has it, too
    type("smbNetBiosName", "OFFICE");
    EXPECT_NE(sentence("updateSMBProperties:", "server-complains").find("must differ"), std::string::npos);
    choose("smbSecurity", "Share");
    EXPECT_NE(sentence("updateSMBProperties:", "server-complains").find("SHARE"), std::string::npos);
    writeConf(plainConf("guest ok = perhaps\n"));
    reviewer->reread();
    type("smbWorkGroup", "HOME");
    EXPECT_NE(sentence("updateSMBProperties:", "server-does-not-start"), "");
}

} // namespace
