// How the window leads: to the first share, the first field, and in words.

#include "support/MainWindowFixture.h"

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

TEST_F(MainWindow, AnEmptyTableHasTheButtonThatBegins) {
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
        EXPECT_EQ(widget<QPushButton>(each.button).text(), each.offers);
    }
    addUser("alice", "501");
    showPage(1);
    clickTitled("Refresh");
    EXPECT_FALSE(widget<QWidget>("userTableViewEmpty").isVisible());
}

TEST_F(MainWindow, NewDropsTheSelectedRowAndEditNeedsOne) {
    addGroup("staff", "120");
    addUser("alice", "501");
    open();
    showPage(1);
    const auto editButton = [this] {
        for (auto* each : widget<QWidget>("mainWindow").findChildren<QPushButton*>()) {
            if (each->text() == "Edit User") {
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

} // namespace
