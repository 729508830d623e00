// What the window asks, clears and leaves alone so that a slip does no harm.

#include "support/MainWindowFixture.h"

namespace {

TEST_F(MainWindow, DeletingAShareNamesItAndLeavesNothingSelectedOrFocusedThatDeletes) {
    addShare("Docs", "/shares/docs");
    addShare("Films", "/shares/films");
    open();
    clickRow("normalTableView", 0);
    answer({"No"});
    click("deleteButton");
    EXPECT_TRUE(lastText.contains("stop sharing “Docs”?  Its folder stays")) << lastText.toStdString();
    EXPECT_TRUE(host.runs.empty());
    answer({"Yes"});
    click("deleteButton");
    EXPECT_FALSE(host.runs.empty());
    EXPECT_EQ(columnOf("normalTableView", "ShareName"), std::vector<std::string>{"Films"});
    // Films is now in the row where Docs was selected, and the pointer is still on the button.
    EXPECT_FALSE(widget<QTableView>("normalTableView").selectionModel()->hasSelection());
    EXPECT_FALSE(widget<QPushButton>("deleteButton").isEnabled());
    EXPECT_EQ(text("shareName"), "");
    auto& window = widget<QWidget>("mainWindow");
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    for (int tab = 0; tab < 20; ++tab) {
        auto* focused = qobject_cast<QPushButton*>(window.focusWidget());
        EXPECT_TRUE(focused == nullptr || frontend::plainTitle(focused->text()) != "Delete All Shares…");
        QTest::keyClick(&window, Qt::Key_Tab);
    }
}

TEST_F(MainWindow, ASelectionFollowsItsNameWhenTheListChangesOrIsCleared) {
    for (const char* share : {"Docs", "Films"}) {
        addShare(share, "/gone");
    }
    addGroup("staff", "20");
    addGroup("club", "501");
    addUser("alice", "501");
    addUser("bob", "502");
    open();
    clickRow("normalTableView", 1);
    nicl({"-delete", "/config/Brindle/Docs"});
    clickTitled("Refresh");
    EXPECT_EQ(text("selectedShareName"), "Films") << "named in the question before it is deleted";
    showPage(1);
    clickRow("userTableView", 1);
    typeInto("fullName", "Robert");
    addUser("carol", "503");
    nicl({"-delete", "/users/alice"});
    clickTitled("Refresh"); // carol is now in bob's row
    EXPECT_EQ(control<NSTableView>("userTableView").selectedRow(), 0);
    EXPECT_EQ(text("shortName") + text("fullName"), "bobRobert");
    nicl({"-delete", "/users/bob"});
    clickTitled("Refresh");
    EXPECT_EQ(text("shortName"), "");
    EXPECT_FALSE(widget<QPushButton>("deleteUserButton").isEnabled());
    showPage(2);
    clickRow("groupTableView", 1);
    nicl({"-delete", "/groups/staff"});
    control<NSButton>("showSystemUsersGroups3").performClick(); // fills the editor, from the old row
    QApplication::processEvents();
    EXPECT_EQ(text("groupName"), "club");
}

TEST_F(MainWindow, TheEditorOfARowThatIsGoneIsEmptiedButNotUnderASheet) {
    addGroup("staff", "20");
    addGroup("club", "501");
    addUser("alice", "501");
    open();
    showPage(2);
    clickRow("groupTableView", 1);
    nicl({"-delete", "/groups/club"});
    clickTitled("Refresh");
    EXPECT_EQ(text("groupName"), "");
    EXPECT_FALSE(widget<QPushButton>("deleteGroupButton").isEnabled());
    showPage(1);
    clickRow("userTableView", 0);
    click("changePasswordButton");
    nicl({"-delete", "/users/alice"});
    controller->refreshPublicList(nullptr);
    QCoreApplication::processEvents();
    EXPECT_EQ(text("shortName"), "alice") << "whose password is being set";
    QTest::keyClick(&widget<QLineEdit>("passwordSecureText1"), Qt::Key_Escape);
    QCoreApplication::processEvents();
    EXPECT_EQ(text("shortName"), "");
    EXPECT_FALSE(widget<QPushButton>("changePasswordButton").isEnabled());
}

TEST_F(MainWindow, AUserWithoutAGroupIdIsNotShownInGroupZero) {
    addGroup("wheel", "0");
    addGroup("guest", "0"); // listed first
    addUser("alice", "501", "0");
    addUser("bob", "502");
    nicl({"-delete", "/users/bob", "gid"});
    open();
    showPage(1);
    const auto& menu = widget<QComboBox>("groupPopUp");
    clickRow("userTableView", 0);
    EXPECT_EQ(menu.currentText(), "guest");
    clickRow("userTableView", 1);
    EXPECT_EQ(menu.currentIndex(), -1);
    control<NSPopUpButton>("groupPopUp").performSelect(0);
    clickTitled("Revert");
    EXPECT_EQ(menu.currentIndex(), -1);
    clickTitled("New User");
    EXPECT_EQ(menu.currentIndex(), 0) << "not that of the last user";
}

TEST_F(MainWindow, APasswordSheetNamesItsUserAndIsCancelledWithoutATrace) {
    addGroup("staff", "20");
    addUser("alice", "501");
    open();
    showPage(1);
    clickRow("userTableView", 0);
    click("changePasswordButton");
    auto& sheet = widget<QWidget>("passwordWindow");
    const auto labels = sheet.findChildren<QLabel*>();
    EXPECT_TRUE(std::any_of(labels.begin(), labels.end(),
                            [](QLabel* label) { return label->text().contains("“alice”"); }));
    typeInto("passwordSecureText1", "secret");
    QTest::keyClick(&widget<QLineEdit>("passwordSecureText1"), Qt::Key_Return);
    EXPECT_EQ(text("passwordErrorText"), "Passwords Do Not Match");
    QTest::keyClick(&widget<QLineEdit>("passwordSecureText1"), Qt::Key_Escape);
    EXPECT_FALSE(sheet.isVisible());
    EXPECT_TRUE(host.runs.empty());
    EXPECT_EQ(text("passwordSecureText1") + text("passwordErrorText"), "");
    click("changePasswordButton"); // it can be opened again
    EXPECT_TRUE(sheet.isVisible());
}

TEST_F(MainWindow, ANewShareStartsWithEveryBoxOff) {
    host.write("etc/smb.conf", "[Docs]\n\tpath = /shares/docs\n\tguest ok = yes\n");
    open();
    clickRow("normalTableView", 0);
    EXPECT_EQ(control<NSButton>("guestAccessButton").state(), NSOnState);
    clickTitled("New Share");
    EXPECT_EQ(control<NSButton>("guestAccessButton").state(), NSOffState);
    EXPECT_EQ(text("shareName"), "");
    EXPECT_TRUE(widget<QLineEdit>("shareName").isVisible());
    control<NSButton>("inheritOwnerButton").setState(NSOnState);
    clickTitled("Revert");
    EXPECT_EQ(control<NSButton>("inheritOwnerButton").state(), NSOffState);
}

TEST_F(MainWindow, AnAdministratorWhoRefusesIsNotAskedAgainInTheSameAction) {
    open();
    host.onReport = [this] { // simulates an action with three runs that asks before each of them
        for (int run = 0; run < 3; ++run) {
            EXPECT_FALSE(frontend->presenter()->runAdministratorDialog({}));
        }
    };
    for (int action = 0; action < 2; ++action) {
        answer({"Refuse"}); // a second dialog would wait forever
        clickTitled("Refresh");
        EXPECT_EQ(asked, QStringList{"Allow Changes"});
    }
}

} // namespace
