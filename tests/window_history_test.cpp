// Undo and the history in the application's own window.

#include "support/HistoryWindowFixture.h"

#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QTreeWidget>

#include <fstream>

namespace {

class WindowHistoryTest : public WindowWithHistory {
  protected:
    /// Opens the menu with the mouse and returns its undo item.
    QAction& openChanges() {
        auto& menu = widget<QMenu>("changesMenu");
        auto* bar = widget<QMainWindow>("mainWindow").menuBar();
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(menu.menuAction()).center());
        EXPECT_TRUE(menu.isVisible());
        auto* undo = menu.findChild<QAction*>("undo");
        undo = undo == nullptr ? widget<QWidget>("mainWindow").findChild<QAction*>("undo") : undo;
        return *undo;
    }

    void clickInChanges(QAction& item) {
        auto& menu = widget<QMenu>("changesMenu");
        QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(&item).center());
    }

    void writeGroup(const char* gid, const QStringList& buttons) {
        showPage(2);
        typeInto("groupName", "team");
        typeInto("gid", gid);
        answer(buttons);
        click("createNewGroupButton");
    }

    /// Takes an entry of the history back, and answers the dialogs with `buttons`.
    void takeBack(int row, const QStringList& buttons) {
        QTimer::singleShot(50, &widget<QWidget>("mainWindow"), [this, row, buttons] {
            auto& list = widget<QTreeWidget>("historyList");
            QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                              list.visualItemRect(list.topLevelItem(row)).center());
            answer(QStringList{"Take Back…"} + buttons + QStringList{"Close"});
        });
        useMenu("History…");
    }
};

TEST_F(WindowHistoryTest, TheMenuNamesWhatItUndoesAndRestoresADeletedShare) {
    addShare("Docs", "/shares/docs");
    const std::string conf = "[Docs]\n\tpath = /shares/docs\n";
    host.write("etc/smb.conf", conf);
    openWithHistory();
    QAction& none = openChanges();
    EXPECT_EQ(frontend::plainTitle(none.text()), "Undo");
    EXPECT_FALSE(none.isEnabled());
    QTest::keyClick(&widget<QMenu>("changesMenu"), Qt::Key_Escape);
    clickRow("normalTableView", 0);
    answer({"Yes"});
    click("deleteButton");
    ASSERT_EQ(columnOf("normalTableView", "ShareName"), std::vector<std::string>{});
    showPage(3);
    typeInto("greeting", "Welcome");
    QAction& undo = openChanges();
    EXPECT_EQ(frontend::plainTitle(undo.text()), "Undo “Share \"Docs\" deleted”");
    answer({"No", "Yes"});
    clickInChanges(undo);
    EXPECT_EQ(columnOf("normalTableView", "ShareName"), std::vector<std::string>{});
    clickInChanges(openChanges());
    EXPECT_EQ(asked, (QStringList{"Undo", "Undo"}));
    EXPECT_TRUE(said.front().contains("Write the share &quot;Docs&quot;")) << said.front().toStdString();
    EXPECT_TRUE(said.front().contains("will be lost: AFP.")) << said.front().toStdString();
    EXPECT_EQ(columnOf("normalTableView", "ShareName"), std::vector<std::string>{"Docs"});
    EXPECT_EQ(host.read("etc/smb.conf"), conf);
}

TEST_F(WindowHistoryTest, AnEntryThatALaterOneDependsOnIsNotTakenBackAndTheLaterOneIsNamed) {
    openWithHistory();
    writeGroup("600", {"Yes"});
    writeGroup("601", {"Go On", "Yes"}); // a changed id causes a warning
    takeBack(1, {"OK"});
    EXPECT_EQ(asked, (QStringList{"History", "Not Possible", "History"}));
    EXPECT_TRUE(said.at(1).contains("depend on it: 2 (Group &quot;team&quot; changed).  Take"))
        << said.at(1).toStdString();
    EXPECT_EQ(columnOf("groupTableView", "GID"), std::vector<std::string>{"601"});
    takeBack(0, {"Yes"});
    EXPECT_EQ(columnOf("groupTableView", "GID"), std::vector<std::string>{"600"});
    takeBack(2, {"Yes"});
    EXPECT_EQ(columnOf("groupTableView", "GID"), std::vector<std::string>{});
}

TEST_F(WindowHistoryTest, OnADamagedDirectorySettingsComeBackAndRecordsDoNot) {
    const std::string conf = "[global]\n\tworkgroup = HOME\n";
    host.write("etc/smb.conf", conf);
    openWithHistory();
    writeGroup("600", {"Yes"});
    showPage(4);
    typeInto("smbWorkGroup", "OFFICE");
    answer({"Go On"});
    clickTitled("Save");
    ASSERT_NE(host.read("etc/smb.conf"), conf);
    std::ofstream(host.storeFile()) << "not a store, but some other file that is longer than a header";
    takeBack(0, {"Yes"});
    EXPECT_EQ(host.read("etc/smb.conf"), conf);
    takeBack(1, {"OK"});
    EXPECT_EQ(asked.at(asked.size() - 2), "Not Possible") << said.back().toStdString();
    EXPECT_EQ(text("smbWorkGroup"), "HOME");
}

TEST_F(WindowHistoryTest, TheWindowWithUnsavedEditsClosesOnlyWhenTheyMayBeLost) {
    openWithHistory();
    auto& window = widget<QWidget>("mainWindow");
    showPage(3);
    typeInto("greeting", "Welcome");
    answer({"Cancel", "Go On"});
    useMenu("Quit");
    EXPECT_TRUE(window.isVisible());
    window.close();
    EXPECT_EQ(asked, (QStringList{"Unsaved Changes", "Unsaved Changes"}));
    EXPECT_FALSE(window.isVisible());
}

TEST_F(WindowHistoryTest, APageIsUnsavedUntilItsSaveHasSucceededAndStaysSoAfterAFailedUndo) {
    openWithHistory();
    writeGroup("600", {"Yes"});
    const auto warnsOfGroups = [this] {
        QAction& undo = openChanges();
        answer({"No"});
        clickInChanges(undo);
        return said.back().contains("will be lost: Groups.");
    };
    EXPECT_FALSE(warnsOfGroups());
    host.onRun = [](const RecordedRun&) { return TestHost::RunAnswer{"nicl: the disk is full\n", 0}; };
    typeInto("groupName", "crew");
    typeInto("gid", "700");
    answer({"Yes"});
    click("createNewGroupButton");
    EXPECT_TRUE(warnsOfGroups());
    answer({"Yes", "OK"});
    clickInChanges(openChanges());
    EXPECT_EQ(asked.back(), "Not Taken Back");
    EXPECT_EQ(text("groupName") + text("gid"), "crew700");
}

} // namespace
