// How the window guides a user: to the first share, the first field, and with hints.

#include "review/Reviewer.h"
#include "support/MainWindowFixture.h"

#include <QDropEvent>
#include <QMimeData>

namespace {

std::string shownIn(const QTableView& table, int row, const char* title) {
    const auto* model = table.model();
    for (int column = 0; column < model->columnCount(); ++column) {
        if (model->headerData(column, Qt::Horizontal).toString() == title) {
            return model->index(row, column).data().toString().toStdString();
        }
    }
    return "no such column";
}

TEST_F(MainWindow, AnEmptyTableHasAButtonToBegin) {
    struct Case {
        int page;
        const char* table;
        const char* field;
        const char* button;
        const char* offers;
    };

    open();
    for (const Case& each :
         {Case{0, "normalTableView", "shareName", "createNewShare", "Create New Share"},
          Case{1, "userTableView", "fullName", "addNewUserButton", "Add New User"},
          Case{2, "groupTableView", "groupName", "createNewGroupButton", "Add New Group"}}) {
        showPage(each.page);
        auto& note = widget<QWidget>(std::string(each.table) + "Empty");
        ASSERT_TRUE(note.isVisible()) << each.table;
        QTest::mouseClick(note.findChild<QPushButton*>(), Qt::LeftButton);
        EXPECT_TRUE(widget<QLineEdit>(each.field).hasFocus()) << each.field;
        EXPECT_EQ(frontend::plainTitle(widget<QPushButton>(each.button).text()), each.offers);
    }
    addUser("alice", "501");
    showPage(1);
    clickTitled("Refresh");
    auto& note = widget<QWidget>("userTableViewEmpty");
    EXPECT_FALSE(note.isVisible());
    QTest::keyClicks(&widget<QLineEdit>("userTableViewFilter"), "zed");
    EXPECT_TRUE(note.isVisible());
    EXPECT_EQ(note.findChild<QLabel*>()->text(), "Nothing matches “zed”.");
    EXPECT_FALSE(note.findChild<QPushButton*>()->isVisible());
    widget<QLineEdit>("userTableViewFilter").clear();
    EXPECT_FALSE(note.isVisible());
}

TEST_F(MainWindow, NewDropsTheSelectedRowAndEditNeedsOne) {
    addGroup("staff", "120");
    addUser("alice", "501");
    open();
    showPage(1);
    const auto editButton = [this] {
        for (auto* each : widget<QWidget>("mainWindow").findChildren<QPushButton*>()) {
            if (frontend::plainTitle(each->text()) == "Edit User") {
                return each;
            }
        }
        throw std::logic_error("no such button");
    };
    EXPECT_FALSE(editButton()->isEnabled());
    clickRow("userTableView", 0);
    EXPECT_TRUE(editButton()->isEnabled());
    clickTitled("Edit User");
    EXPECT_TRUE(widget<QLineEdit>("fullName").hasFocus());
    clickTitled("New User");
    EXPECT_EQ(text("shortName"), "");
    EXPECT_EQ(text("uid"), "502"); // proposed
    EXPECT_EQ(control<NSTableView>("userTableView").selectedRow(), -1);
}

TEST_F(MainWindow, CellsSpeakInWordsAndMarksAndTheModelsKeepTheirValues) {
    const auto folder = host.root() / "docs";
    std::filesystem::create_directory(folder);
    std::filesystem::permissions(folder, std::filesystem::perms(0751));
    addShare("Docs", folder.string());
    host.write("etc/smb.conf", "[Gone]\n\tpath = /nowhere\n\tguest ok = yes\n");
    addGroup("staff", "120", {"alice", "bob"});
    addGroup("empty", "121");
    addUser("alice", "501");
    open();
    showPage(1);
    showPage(2);
    const auto& shares = widget<QTableView>("normalTableView");
    const auto& users = widget<QTableView>("userTableView");
    const auto& groups = widget<QTableView>("groupTableView");
    EXPECT_EQ(shownIn(shares, 0, "Owner may"), "Read & Write");
    EXPECT_EQ(shownIn(shares, 0, "Group may"), "Read Only");
    EXPECT_EQ(shownIn(shares, 0, "Everyone may"), "None");
    EXPECT_EQ(shownIn(shares, 0, "AFP"), "✓");
    EXPECT_EQ(shownIn(shares, 0, "SMB"), "");
    EXPECT_EQ(shownIn(shares, 0, "Guests"), "");
    EXPECT_EQ(shownIn(shares, 1, "Guests"), "✓");
    EXPECT_EQ(shownIn(shares, 1, "Owner may"), "") << "nothing is known about a missing folder";
    EXPECT_EQ(shownIn(users, 0, "Public Folder"), "");
    EXPECT_EQ(shownIn(users, 0, "Full Name"), "");
    EXPECT_EQ(shownIn(groups, 0, "Users in Group"), "alice, bob");
    EXPECT_EQ(shownIn(groups, 1, "Users in Group"), "");
    EXPECT_EQ(columnOf("groupTableView", "Users in Group")[1], "#NoValue#");
    EXPECT_EQ(columnOf("normalTableView", "Owner")[0], "r/w");
    int smb = 0;
    while (shares.model()->headerData(smb, Qt::Horizontal).toString() != "SMB") {
        ++smb;
    }
    EXPECT_EQ(shares.model()->index(0, smb).data(Qt::AccessibleTextRole).toString(), "No");
}

TEST_F(MainWindow, AFieldSaysAtOnceWhatTheButtonWouldDoWithItsText) {
    struct Case {
        const char* field;
        const char* typed;
        const char* said; ///< the beginning of the hint
    };

    addShare("Docs", host.root().string());
    addShare("Films", "/nowhere");
    addUser("alice", "501");
    addUser("root", "0");
    open();
    clickRow("normalTableView", 0);
    clickTitled("Edit Share");
    const auto hintOf = [this](const char* field) {
        QApplication::processEvents();
        return widget<QLineEdit>(field).accessibleDescription().toStdString();
    };
    EXPECT_EQ(hintOf("shareName") + hintOf("directory"), "");
    for (const Case& each :
         {Case{"shareName", "Music", "The button creates another share; “Docs” stays"},
          Case{"shareName", "Films", "“Films” already exists: the button changes it."},
          Case{"shareName", "fILMS", "“Films” already exists, and differs only"},
          Case{"shareName", "Docs", ""}, Case{"directory", "shares", "The path of a folder begins"},
          Case{"directory", "/nowhere", "There is no such folder."},
          Case{"directory", "/dev/null", "This is not a folder."}, Case{"directory", "/", ""}}) {
        typeInto(each.field, each.typed);
        EXPECT_TRUE(hintOf(each.field).starts_with(each.said)) << each.typed << ": " << hintOf(each.field);
        EXPECT_EQ(hintOf(each.field).empty(), *each.said == '\0') << each.typed << ": " << hintOf(each.field);
    }
    clickRow("normalTableView", 1);
    EXPECT_EQ(hintOf("directory"), "There is no such folder.");
    EXPECT_EQ(hintOf("shareName"), "");
    showPage(1);
    clickRow("userTableView", 0);
    typeInto("shortName", "root"); // not in any list
    EXPECT_EQ(hintOf("shortName"), "“root” already exists: the button changes it.");
    typeInto("shortName", "roo");
    EXPECT_TRUE(hintOf("shortName").starts_with("The button adds another user")) << hintOf("shortName");
}

TEST_F(MainWindow, LeavingTheFolderUnchangedKeepsTheChosenPrivileges) {
    std::filesystem::permissions(host.root(), std::filesystem::perms(0711));
    addShare("Docs", host.root().string());
    open();
    clickRow("normalTableView", 0);
    clickTitled("Edit Share");
    auto& everyone = control<NSPopUpButton>("everyonePrivs");
    everyone.performSelect(1);
    auto& folder = widget<QLineEdit>("directory");
    folder.setFocus();
    QTest::keyClick(&folder, Qt::Key_End);
    QTest::keyClicks(&folder, "x");
    QTest::keyClick(&folder, Qt::Key_Backspace);
    widget<QLineEdit>("shareName").setFocus();
    EXPECT_EQ(everyone.indexOfSelectedItem(), 1);
    typeInto("directory", "/");
    widget<QLineEdit>("shareName").setFocus();
    typeInto("directory", QString::fromStdString(host.root().string()));
    widget<QLineEdit>("shareName").setFocus();
    EXPECT_EQ(everyone.indexOfSelectedItem(), 3) << "as it is on disk";
}

TEST_F(MainWindow, GuestsWhoMayWriteAndAnOldSecurityAreWarnedOfOnlyWhenChosen) {
    open();
    const auto isSaid = [this](const char* text) {
        QApplication::processEvents();
        for (auto* label : widget<QWidget>("mainWindow").findChildren<QLabel*>()) {
            if (label->text().startsWith(text) && label->isVisible()) {
                return true;
            }
        }
        return false;
    };
    clickTitled("New Share");
    EXPECT_FALSE(isSaid("Anybody may"));
    control<NSPopUpButton>("sharingSMB").performSelect(1);
    control<NSPopUpButton>("everyonePrivs").performSelect(0);
    EXPECT_FALSE(isSaid("Anybody may"));
    control<NSButton>("guestAccessButton").performClick();
    EXPECT_TRUE(isSaid("Anybody may"));
    control<NSPopUpButton>("everyonePrivs").performSelect(1);
    EXPECT_FALSE(isSaid("Anybody may"));
    showPage(4);
    control<NSPopUpButton>("smbPropsPage").performSelect(1);
    EXPECT_FALSE(isSaid("Samba 4"));
    control<NSPopUpButton>("smbSecurity").performSelect(1);
    EXPECT_TRUE(isSaid("Samba 4"));
}

TEST_F(MainWindow, ANumberOutsideItsLimitsIsReportedWhileItIsTypedAndNeverSaved) {
    struct Case {
        const char* field;
        const char* typed;
        const char* said;
    };

    host.write("Library/Preferences/com.apple.AppleFileServer.plist",
               "<plist version=\"1.0\"><dict><key>maxGuests</key><integer>-1</integer></dict></plist>");
    open();
    showPage(3);
    control<NSPopUpButton>("afsPropsPage").performSelect(1);
    QApplication::processEvents();
    auto& guests = widget<QLineEdit>("numGuestConnections");
    EXPECT_EQ(guests.text(), "no limit");
    guests.setFocus();
    EXPECT_EQ(guests.text(), "-1");
    for (const Case& each :
         {Case{"tcpPort", "65536", "A whole number from 1 to 65535."},
          Case{"tcpPort", "0", "A whole number from 1 to 65535."}, Case{"tcpPort", "548", ""},
          Case{"numConnections", "abc", "A whole number, -1 or more."},
          Case{"numConnections", "2147483648", "A whole number from -1 to 2147483647."},
          Case{"numConnections", "12", ""}}) {
        typeInto(each.field, each.typed);
        QApplication::processEvents();
        EXPECT_EQ(widget<QLineEdit>(each.field).accessibleDescription(), each.said) << each.typed;
    }
    EXPECT_EQ(guests.text(), "no limit"); // the field was left
    QMimeData dropped;
    dropped.setText("2");
    QDragEnterEvent over(QPoint(1, 5), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&guests, &over);
    QDropEvent drop(QPointF(1, 5), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&guests, &drop);
    EXPECT_EQ(text("numGuestConnections"), "2-1") << "the words are not the number";
    control<NSTextField>("numGuestConnections").setStringValue("-1");
    typeInto("numConnections", "12abc");
    control<NSPopUpButton>("afsPropsPage").performSelect(0);
    QApplication::processEvents();
    clickTitled("Save");
    EXPECT_TRUE(host.runs.empty());
    EXPECT_TRUE(widget<QLineEdit>("numConnections").hasFocus()); // its page is shown
    typeInto("numConnections", "12");
    clickTitled("Save");
    EXPECT_FALSE(host.runs.empty());
}

TEST_F(MainWindow, AFolderDroppedOnThePageOfTheSharesBeginsAShare) {
    const auto folder = host.root() / "My Films";
    std::filesystem::create_directory(folder);
    open();
    review::Reviewer reviewer(*interface);
    frontend->useReviewer(reviewer);
    auto& window = widget<QWidget>("mainWindow");
    const auto drop = [&window](const std::string& path) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(QString::fromStdString(path))});
        QDragEnterEvent enter({400, 300}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(&window, &enter);
        if (!enter.isAccepted()) {
            return false;
        }
        QDropEvent event({400, 300}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(&window, &event);
        return event.isAccepted();
    };
    EXPECT_FALSE(drop("/dev/null"));
    EXPECT_TRUE(drop(folder.string() + "/"));
    EXPECT_EQ(text("shareName"), "My Films");
    EXPECT_EQ(text("directory"), folder.string());
    EXPECT_EQ(control<NSPopUpButton>("ownerPrivs").indexOfSelectedItem(), 0); // as on disk
    EXPECT_TRUE(widget<QLineEdit>("shareName").hasFocus());
    showPage(1);
    EXPECT_FALSE(drop(folder.string()));
    frontend.reset(); // must be destroyed before the reviewer
}

} // namespace
