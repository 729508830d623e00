// The application's own window, used with mouse and keys.

#include "support/MainWindowFixture.h"

namespace {

TEST_F(MainWindow, EveryNamedControlOfTheInterfaceFileIsShown) {
    open();
    for (int page = 0; page < 5; ++page) {
        showPage(page);
    }
    const auto& window = widget<QWidget>("mainWindow");
    for (const char* last : {"loggingEnable", "smbHomeDirsReadOnly"}) {
        // The other pages of the settings are built when the event loop is idle.
        EXPECT_TRUE(QTest::qWaitFor([&] { return window.findChild<QWidget*>(last) != nullptr; })) << last;
    }
    const std::function<void(const platform::InterfaceNode&)> visit =
        [&](const platform::InterfaceNode& node) {
            if (node.element && !node.element->name().empty() &&
                node.kind != platform::InterfaceKind::MenuItem) {
                EXPECT_NO_THROW((void)widget<QWidget>(node.element->name()));
            }
            for (const auto& child : node.children) {
                visit(*child);
            }
        };
    visit(interface->root());
}

TEST_F(MainWindow, NumbersAndServerNamesAreKeptCleanWhileTheyAreTyped) {
    struct Case {
        int page;
        const char* field;
        const char* before;
        const char* pasted;
    };

    open();
    for (const Case& each :
         {Case{1, "uid", "501", "x"}, Case{1, "uid", "501", "3 4"}, Case{2, "gid", "20", "-"},
          Case{4, "smbWorkGroup", "FIFTEEN_LETTERS", "S"}, Case{4, "smbWorkGroup", "HOME", " "}}) {
        showPage(each.page);
        control<NSTextField>(each.field).setStringValue(each.before);
        QApplication::processEvents();
        auto& edit = widget<QLineEdit>(each.field);
        edit.setFocus();
        edit.end(false);
        QApplication::clipboard()->setText(each.pasted);
        QTest::keyClick(&edit, Qt::Key_V, Qt::ControlModifier);
        EXPECT_EQ(edit.text(), each.before) << each.pasted;
        EXPECT_EQ(text(each.field), each.before) << each.pasted;
    }
}

TEST_F(MainWindow, AShareIsMadeInTheDrawerAndNamedBesideItsDeletion) {
    open();
    const std::string folder = host.root().string();
    EXPECT_FALSE(widget<QWidget>("drawer").isVisible());
    clickTitled("New Share");
    ASSERT_TRUE(widget<QLineEdit>("shareName").isVisible());
    typeInto("shareName", "Films");
    typeInto("directory", QString::fromStdString(folder));
    auto& smb = widget<QComboBox>("sharingSMB");
    smb.setFocus();
    QTest::keyClicks(&smb, "shared");
    EXPECT_EQ(control<NSPopUpButton>("sharingSMB").titleOfSelectedItem(), "Shared");
    click("createNewShare");
    ASSERT_EQ(widget<QTableView>("normalTableView").model()->rowCount(), 1);
    EXPECT_EQ(columnOf("normalTableView", "DirectoryPath"), std::vector<std::string>{folder});
    EXPECT_NE(host.read("etc/smb.conf").find("[Films]"), std::string::npos);
    EXPECT_EQ(widget<QLabel>("selectedShareName").accessibleName(), "Films");
    // The folder is treated as chosen, so its privileges are read from the disk.
    EXPECT_EQ(control<NSPopUpButton>("ownerPrivs").indexOfSelectedItem(), 0);
    EXPECT_TRUE(host.panels.empty());
    // The button says what it would do to the typed name.
    EXPECT_EQ(frontend::plainTitle(widget<QPushButton>("createNewShare").text()), "Update Share");
    typeInto("shareName", "Filmsx");
    EXPECT_EQ(frontend::plainTitle(widget<QPushButton>("createNewShare").text()), "Create New Share");
    showPage(1);
    EXPECT_FALSE(widget<QLineEdit>("shareName").isVisible());
}

TEST_F(MainWindow, APasswordIsAskedForOnASheetUntilBothFieldsAgree) {
    addGroup("staff", "20");
    addUser("alice", "501");
    open();
    showPage(1);
    clickRow("userTableView", 0);
    EXPECT_EQ(widget<QLineEdit>("shortName").text(), "alice");
    click("changePasswordButton");
    auto& sheet = widget<QWidget>("passwordWindow");
    ASSERT_TRUE(sheet.isVisible());
    typeInto("passwordSecureText1", "secret");
    typeInto("passwordSecureText2", "other");
    QTest::keyClick(&widget<QLineEdit>("passwordSecureText2"), Qt::Key_Return);
    EXPECT_TRUE(sheet.isVisible());
    EXPECT_EQ(widget<QLabel>("passwordErrorText").text(), "Passwords Do Not Match");
    typeInto("passwordSecureText2", "secret");
    QTest::keyClick(&widget<QLineEdit>("passwordSecureText2"), Qt::Key_Return);
    EXPECT_FALSE(sheet.isVisible());
    EXPECT_EQ(widget<QLineEdit>("passwordSecureText1").text(), "");
    ASSERT_FALSE(host.runs.empty());
    EXPECT_EQ(host.runs.front().arguments.back(), "secret");
}

TEST_F(MainWindow, AMenuSelectsThePageOfTheSettingsAndAnotherShowsTheAboutPanel) {
    open();
    showPage(3);
    auto& pages = widget<QComboBox>("afsPropsPage");
    pages.setFocus();
    QTest::keyClicks(&pages, "log");
    QApplication::processEvents();
    EXPECT_TRUE(widget<QLineEdit>("logFilePath").isVisible());
    EXPECT_FALSE(widget<QLineEdit>("greeting").isVisible());
    for (auto* action : widget<QWidget>("mainWindow").findChildren<QAction*>()) {
        if (action->menuRole() == QAction::AboutRole) {
            action->trigger();
        }
    }
    EXPECT_TRUE(widget<QWidget>("aboutWindow").isVisible());
    EXPECT_EQ(widget<QWidget>("aboutWindow").windowTitle(), "About Brindle");
}

} // namespace
