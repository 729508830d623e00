#include "support/SurprisesFixture.h"

#include <algorithm>

namespace {

TEST_F(Surprises, WhatOurToolsWouldCertainlyRefuseIsBlockedBeforeTheFirstRun) {
    begin();
    const auto expectBlocked = [this](const std::string& operation, const std::string& code,
                                      const std::string& named) {
        const review::Plan plan = reviewer->planSend(operation);
        ASSERT_FALSE(plan.blocks.empty()) << operation << ' ' << named;
        EXPECT_EQ(plan.blocks.front().code, code);
        EXPECT_NE(plan.blocks.front().sentence.find(named), std::string::npos)
            << plan.blocks.front().sentence;
        EXPECT_EQ(plan.blocks.size(), 1U);
        EXPECT_TRUE(plan.warnings.empty());
        host.answerAlert("Not Possible", "OK");
        send(operation);
        EXPECT_TRUE(host.runs.empty());
    };
    newShare("a[b", films);
    expectBlocked("createShare:", "name", "\"a[b\"");
    type("shareName", "printers");
    expectBlocked("createShare:", "name", "\"printers\"");
    type("shareName", "New");
    type("directory", "/ends in\\");
    expectBlocked("createShare:", "folder", "\"/ends in\\\"");
    type("directory", films);
    type("smbServerInfoString", "ends in\\ ");
    expectBlocked("updateSMBProperties:", "text", "\"server string\"");
    type("shortName", "a,b");
    type("fullName", "A");
    type("uid", "600");
    expectBlocked("addNewUser:", "name", "\"a,b\"");
    type("shortName", "ab");
    type("fullName", "A\tB");
    expectBlocked("addNewUser:", "text", "\"A\tB\" cannot be the \"realname\" of \"ab\"");
    type("fullName", "A");
    type("uid", "4294967295");
    expectBlocked("addNewUser:", "number", "\"uid\" 4294967295 of \"ab\"");
    type("uid", "600");
    choose("groupPopUp", "staff");
    nicl({"-delete", "/groups/staff"}); // by somebody else: the menu still has it
    expectBlocked("addNewUser:", "name", "there is no group \"staff\"");
    type("groupName", "a:b");
    type("gid", "600");
    expectBlocked("addNewGroup:", "name", "\"a:b\"");
    selectRow(*app().userTableView, "User", "bob");
    send("changePassword:");
    for (const std::string& password : {std::string("tab\t"), std::string(255, 'x')}) {
        type("passwordSecureText1", password);
        type("passwordSecureText2", password);
        expectBlocked("setPassword:", "text", "\"bob\"");
    }
    type("passwordSecureText1", "secret");
    type("passwordSecureText2", "secret");
    nicl({"-delete", "/users/bob"});
    expectBlocked("setPassword:", "name", "there is no user \"bob\"");
}

TEST_F(Surprises, WhatTheOperationRefusesItselfAndDeletingAreNotBlocked) {
    addShare("a", films);
    nicl({"-create", "/config/Brindle/a", "afp_name", "a"});
    begin();
    host.answerAlert("Illegal Share Name", "OK");
    newShare("global", films);
    send("createShare:");
    EXPECT_TRUE(host.runs.empty());
    selectShare("a");
    type("shareName", "a[b");
    send("deleteShare:");
    EXPECT_FALSE(host.runs.empty());
}

TEST_F(Surprises, AnActionIsAskedAboutOnlyWhenItHasAWarning) {
    begin();
    reviewer->setQuestion(&review::Reviewer::askAboutWarnings);
    selectShare("Films");
    send("createShare:");
    EXPECT_FALSE(host.runs.empty());
    writeConf(plainConf("wins support = yes\n"));
    host.runs.clear();
    selectShare("Docs");
    host.answerAlert("Review", "Cancel");
    send("createShare:");
    EXPECT_TRUE(host.runs.empty());
    host.answerAlert("Review", "Go On");
    send("createShare:");
    EXPECT_FALSE(host.runs.empty());
    EXPECT_EQ(host.alerts.back().message, "Somebody else changed [global] \"wins support\" in smb.conf after "
                                          "Brindle read it: saving undoes that change.");
}

TEST_F(Surprises, WhatIsWrittenWhileTheUserIsAskedIsAskedAbout) {
    begin();
    int questions = 0;
    reviewer->setQuestion([&](const review::Plan& plan) {
        if (questions++ == 0) {
            writeConf(plainConf("wins support = yes\n"));
        }
        return plan.warnings.empty();
    });
    selectShare("Docs");
    send("createShare:");
    EXPECT_TRUE(host.runs.empty());
    EXPECT_EQ(questions, 2);
}

} // namespace
