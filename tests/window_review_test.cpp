// The review in the application's own window.

#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSWindow.h"
#include "review/Reviewer.h"
#include "support/LockHolder.h"
#include "support/MainWindowFixture.h"

#include <QFrame>
#include <QPlainTextEdit>

namespace {

class WindowReviewTest : public MainWindow {
  protected:
    explicit WindowReviewTest(const TestHost::Options& options = {}) : MainWindow(options) {}

    void openWith(const std::string& smbConf) {
        host.write("etc/smb.conf", smbConf);
        open();
        reviewer = std::make_unique<review::Reviewer>(*interface);
        frontend->useReviewer(*reviewer);
        QApplication::processEvents();
    }

    void TearDown() override {
        MainWindow::TearDown();
        reviewer.reset();
    }

    void fillShare(const QString& name) {
        clickTitled("New Share");
        typeInto("shareName", name);
        typeInto("directory", QString::fromStdString(host.root().string()));
        control<NSPopUpButton>("sharingSMB").performSelect(1);
        QApplication::processEvents();
    }

    [[nodiscard]] bool isOnDisk(const std::string& text) const {
        return host.read("etc/smb.conf").find(text) != std::string::npos;
    }

    std::unique_ptr<review::Reviewer> reviewer;
};

class WindowReviewLineByLine : public WindowReviewTest {
  protected:
    WindowReviewLineByLine() : WindowReviewTest(options()) {}

    static TestHost::Options options() {
        TestHost::Options options;
        options.keepsLayout = true;
        return options;
    }
};

constexpr const char* handWritten = "[global]\nworkgroup = HOME\na line that says nothing\n";

TEST_F(WindowReviewTest, AnActionWithAWarningIsAskedAboutAndOnlyGoOnPerformsIt) {
    openWith(handWritten);
    fillShare("Films");
    answer({"Cancel"});
    click("createNewShare");
    EXPECT_EQ(asked, QStringList{"Review"});
    EXPECT_TRUE(lastText.contains("a line that says nothing")) << lastText.toStdString();
    EXPECT_TRUE(lastText.count("Write the share &quot;Films&quot;") == 1) << lastText.toStdString();
    EXPECT_TRUE(host.runs.empty());
    EXPECT_FALSE(isOnDisk("[Films]"));
    answer({"Go On"});
    click("createNewShare");
    EXPECT_EQ(asked, QStringList{"Review"});
    EXPECT_TRUE(isOnDisk("[Films]"));
}

TEST_F(WindowReviewTest, EveryChangeIsReviewedOnDemandAndAPlanChangesNothing) {
    openWith("");
    showPage(4);
    typeInto("smbWorkGroup", "OFFICE");
    answer({"Close"});
    useMenu("What Would This Do?");
    EXPECT_EQ(asked, QStringList{"What Would This Do?"});
    EXPECT_TRUE(lastText.startsWith("Save\n")) << lastText.toStdString();
    EXPECT_TRUE(lastText.contains("/etc/smb.conf")) << lastText.toStdString();
    EXPECT_TRUE(host.runs.empty());
    useMenu("Review Every Change");
    showPage(0);
    fillShare("Films");
    answer({"Details", "Cancel"});
    click("createNewShare");
    EXPECT_EQ(asked, (QStringList{"Review", "Review"}));
    EXPECT_FALSE(isOnDisk("[Films]"));
}

TEST_F(WindowReviewTest, AFileThatSomebodyElseChangedIsNamedAboveTheSharesUntilItIsReadAgain) {
    openWith("[Films]\npath = /films\n");
    auto& notice = widget<QFrame>("changedOutside");
    EXPECT_FALSE(notice.isVisible());
    const auto read = [&] {
        EXPECT_TRUE(notice.isVisible());
        clickTitled("Read smb.conf Again");
    };
    host.write("etc/smb.conf", "[Music]\npath = /music\n");
    QEvent activated(QEvent::WindowActivate);
    QApplication::sendEvent(&widget<QWidget>("mainWindow"), &activated);
    QTest::qWait(5);
    read();
    EXPECT_FALSE(notice.isVisible());
    EXPECT_EQ(columnOf("normalTableView", "ShareName"), std::vector<std::string>{"Music"});
    clickTitled("New Share");
    typeInto("shareName", "Half");
    host.write("etc/smb.conf", "");
    clickTitled("Refresh");
    answer({"Cancel", "Go On"});
    read();
    EXPECT_EQ(text("shareName"), "Half");
    read();
    EXPECT_EQ(asked, (QStringList{"Unsaved Changes", "Unsaved Changes"}));
    EXPECT_EQ(text("shareName"), "");
}

TEST_F(WindowReviewTest, AfterAFailedCopyTheEditsStayAndOnlyASaveWritesThem) {
    openWith("[global]\nworkgroup = HOME\n");
    host.onRun = [](const RecordedRun& run) {
        return TestHost::RunAnswer{run.tool == "/bin/cp" ? "no room\n" : "", 0};
    };
    host.allowUnaskedAlerts();
    fillShare("Half");
    showPage(4);
    typeInto("smbWorkGroup", "OFFICE");
    answer({"Go On", "OK"});
    for (auto* button : widget<QWidget>("smbPropsTabView").window()->findChildren<QPushButton*>()) {
        if (button->isVisible() && frontend::plainTitle(button->text()) == "Save") {
            QTest::mouseClick(button, Qt::LeftButton);
        }
    }
    EXPECT_TRUE(asked.contains("smb.conf Write Unsuccessful")) << asked.join(", ").toStdString();
    EXPECT_FALSE(reviewer->hasUnwrittenSMBConf());
    EXPECT_EQ(text("smbWorkGroup") + text("shareName") + text("directory"),
              "OFFICEHalf" + host.root().string());
    host.write("etc/smb.conf", "[global]\nworkgroup = OTHER\n");
    clickTitled("Revert");
    EXPECT_EQ(text("smbWorkGroup") + text("shareName"), "OTHERHalf");
}

TEST_F(WindowReviewLineByLine, EditsOnAnotherPageStayWhenASaveTakesUpWhatSomebodyElseWrote) {
    openWith("[global]\n");
    showPage(4);
    typeInto("smbWorkGroup", "OFFICE");
    host.write("etc/smb.conf", "[global]\nlog level = 1\n");
    showPage(0);
    fillShare("Films");
    answer({"Go On"});
    click("createNewShare");
    EXPECT_TRUE(isOnDisk("log level = 1") && isOnDisk("[Films]"));
    EXPECT_EQ(text("smbWorkGroup"), "OFFICE");
    showPage(4);
    answer({"Go On"});
    clickTitled("Save");
    host.write("etc/smb.conf", "[global]\nworkgroup = OTHER\n");
    typeInto("smbServerInfoString", "unsaved");
    showPage(0);
    fillShare("Music");
    answer({"Go On"});
    click("createNewShare");
    EXPECT_EQ(text("smbServerInfoString"), "unsaved");
    EXPECT_EQ(text("smbWorkGroup"), "OTHER") << "what is saved is no edit any more";
}

TEST_F(WindowReviewTest, AnEditEndsWhenItIsSavedOrRevertedOrMakesRoomForAnotherValue) {
    addShare("Docs", "/gone/docs");
    addShare("Films", "/gone/films");
    const auto writeOutside = [this] {
        host.write("Library/Preferences/com.apple.AppleFileServer.plist",
                   "<plist><dict><key>loginGreeting</key><string>Outside</string></dict></plist>");
    };
    writeOutside();
    openWith("");
    clickRow("normalTableView", 0);
    clickTitled("Edit Share");
    auto& smb = control<NSPopUpButton>("sharingSMB");
    for (const bool isReverted : {false, true}) {
        smb.performSelect(0); // what was shown before
        EXPECT_TRUE(smb.isEdited());
        isReverted ? clickTitled("Revert") : clickRow("normalTableView", 1);
        EXPECT_FALSE(smb.isEdited()) << isReverted;
    }
    smb.performSelect(1);
    clickTitled("New Share");
    smb.selectItemAtIndex(1);
    EXPECT_FALSE(smb.isEdited()) << "the program shows the same by chance";
    showPage(3);
    typeInto("greeting", "Hello");
    answer({"Go On"});
    clickTitled("Save");
    writeOutside();
    answer({"Cancel"});
    clickTitled("Save");
    EXPECT_TRUE(said.join("").contains("from &quot;Outside&quot;")) << said.join("").toStdString();
    clickTitled("Revert");
    EXPECT_EQ(text("greeting"), "Outside");
}

TEST_F(WindowReviewTest, APartlyShownPageCannotBeSavedUntilTheFileIsRepaired) {
    openWith("[global]\nworkgroup = A\ndos charset = 8\nwins server = late\n");
    showPage(4);
    const auto save = [this] {
        for (auto* button : widget<QWidget>("mainWindow").findChildren<QPushButton*>()) {
            if (frontend::plainTitle(button->text()) == "Save" && button->isVisible()) {
                return button;
            }
        }
        throw std::logic_error("the page has no button Save");
    };
    EXPECT_TRUE(widget<QLabel>("smbPartNotice").isVisible());
    EXPECT_FALSE(save()->isEnabled());
    host.write("etc/smb.conf", "[global]\nworkgroup = B\nwins server = late\n");
    clickTitled("Revert");
    EXPECT_EQ(text("smbWorkGroup") + text("smbWINSServer"), "Blate");
    EXPECT_TRUE(save()->isEnabled());
    EXPECT_FALSE(widget<QLabel>("smbPartNotice").isVisible());
}

TEST_F(WindowReviewTest, AShareThatTheServerReadsDifferentlyIsMarkedInItsRow) {
    openWith("[Docs]\npath = /docs\nGuest OK = yes\n[Films]\npath = /films\n");
    auto* model = widget<QTableView>("normalTableView").model();
    const auto tip = [model](int row) { return model->index(row, 0).data(Qt::ToolTipRole).toString(); };
    EXPECT_FALSE(model->index(0, 0).data(Qt::DecorationRole).isNull());
    EXPECT_TRUE(tip(0).contains("Guest OK")) << tip(0).toStdString();
    EXPECT_TRUE(model->index(1, 0).data(Qt::DecorationRole).isNull());
    EXPECT_TRUE(tip(1).contains(">Films<")) << tip(1).toStdString();
}

TEST_F(WindowReviewTest, AnImpossiblePasswordIsRefusedOnItsSheet) {
    addGroup("staff", "20");
    addUser("alice", "501");
    openWith("");
    showPage(1);
    clickRow("userTableView", 0);
    click("changePasswordButton");
    for (const char* field : {"passwordSecureText1", "passwordSecureText2"}) {
        control<NSTextField>(field).setStringValue(std::string(300, 'x'));
    }
    answer({"OK"});
    QTest::keyClick(&widget<QLineEdit>("passwordSecureText2"), Qt::Key_Return);
    EXPECT_EQ(asked, QStringList{"Not Possible"});
    EXPECT_TRUE(widget<QWidget>("passwordWindow").isVisible());
    EXPECT_NE(text("passwordErrorText"), "");
    EXPECT_TRUE(host.runs.empty());
}

TEST_F(WindowReviewTest, AnUnusableValueIsExplainedBesideItsFieldUntilItIsEdited) {
    struct Case {
        int page;
        const char* field;
        const char* text;
        const char* button;
    };

    addGroup("staff", "20");
    openWith("");
    clickTitled("New Share");
    control<NSTextField>("directory").setStringValue(host.root().string());
    control<NSTextField>("uid").setStringValue("501");
    control<NSTextField>("fullName").setStringValue("Al");
    for (const Case& each :
         {Case{0, "shareName", "a[b", "createNewShare"}, Case{1, "shortName", "a,b", "addNewUserButton"},
          Case{2, "gid", "4294967295", "createNewGroupButton"}, Case{4, "smbHideFiles", "/a/\\", ""}}) {
        SCOPED_TRACE(each.field);
        showPage(each.page);
        if (each.page == 0) {
            control<NSDrawer>("drawer").open();
        }
        control<NSTextField>("groupName").setStringValue("team");
        control<NSTextField>(each.field).setStringValue(each.text); // on a hidden page of the SMB settings
        QTest::qWait(20);
        control<NSButton>("createNewShare").setEnabled(true);
        control<NSButton>("addNewUserButton").setEnabled(true);
        control<NSButton>("createNewGroupButton").setEnabled(true);
        QApplication::processEvents();
        answer({"OK"});
        if (*each.button == '\0') {
            clickTitled("Save");
        } else {
            click(each.button);
        }
        ASSERT_EQ(asked, QStringList{"Not Possible"});
        auto& edit = widget<QLineEdit>(each.field);
        EXPECT_TRUE(edit.isVisible());
        EXPECT_EQ(edit.window()->focusWidget(), &edit);
        EXPECT_TRUE(edit.accessibleDescription().contains(each.text))
            << edit.accessibleDescription().toStdString();
        const auto isSaid = [this, why = edit.accessibleDescription()] {
            for (auto* label : widget<QWidget>("mainWindow").findChildren<QLabel*>()) {
                if (label->text() == why && label->isVisible()) {
                    return true;
                }
            }
            return false;
        };
        EXPECT_TRUE(isSaid());
        edit.home(false);
        QTest::keyClick(&edit, Qt::Key_Delete);
        EXPECT_FALSE(isSaid());
        EXPECT_EQ(edit.accessibleDescription(), "");
        EXPECT_TRUE(host.runs.empty());
    }
}

TEST_F(WindowReviewTest, TheMigrationShowsWhichRecordsItWouldRewriteBeforeItIsConfirmed) {
    nicl({"-create", "/config/Brindle/Old"});
    nicl({"-create", "/config/Brindle/Old", "directory_path", "/shares/old"});
    NSUserDefaults::standardUserDefaults().setInteger(11, "BrindleDonationReminder");
    load();
    reviewer = std::make_unique<review::Reviewer>(*interface);
    frontend->useReviewer(*reviewer);
    answer({"No"});
    NSApp().finishLaunching();
    EXPECT_EQ(asked, QStringList{"Shares Are Not Updated for Jaguar"});
    EXPECT_TRUE(lastText.contains("Remove the share &quot;Old&quot; from the directory."))
        << lastText.toStdString();
    EXPECT_TRUE(lastText.contains("update them now?")) << lastText.toStdString();
    EXPECT_TRUE(host.runs.empty());
    answer({"Yes", "OK"});
    controller->checkSharesFor10pt2();
    EXPECT_EQ(asked, (QStringList{"Shares Are Not Updated for Jaguar", "Shares Updated for Jaguar"}));
    EXPECT_FALSE(host.runs.empty());
}

TEST_F(WindowReviewTest, ADeletionIsConfirmedWithASingleQuestion) {
    addShare("Docs", "/shares/docs");
    addShare("Films", "/shares/films");
    openWith("[Docs]\npath = /shares/docs\nvfs objects = recycle\n");
    clickRow("normalTableView", 0);
    answer({"No", "Yes", "No"});
    click("deleteButton");
    EXPECT_EQ(asked, QStringList{"Delete Share"});
    EXPECT_TRUE(lastText.contains("stop sharing “Docs”?  Its folder stays")) << lastText.toStdString();
    EXPECT_TRUE(lastText.contains("vfs objects")) << lastText.toStdString();
    EXPECT_TRUE(host.runs.empty());
    click("deleteButton");
    EXPECT_EQ(asked.size(), 2);
    EXPECT_FALSE(isOnDisk("[Docs]"));
    clickRow("normalTableView", 0); // its deletion has no warnings
    click("deleteButton");
    EXPECT_EQ(asked, (QStringList{"Delete Share", "Delete Share", "Delete Share"}));
    EXPECT_EQ(columnOf("normalTableView", "ShareName"), std::vector<std::string>{"Films"});
}

TEST_F(WindowReviewTest, TheHolderOfTheDirectoryIsNamedOnceAndTheWaitCanBeEnded) {
    addShare("Docs", "/shares/docs");
    openWith("");
    auto& notice = widget<QFrame>("directoryNotice");
    std::optional<LockHolder> holder(host.storeFile().string());
    answer({"Stop Waiting"});
    clickTitled("Refresh");
    EXPECT_EQ(asked, QStringList{"Waiting"});
    const QString process = QString::fromStdString(holder->process());
    EXPECT_TRUE(lastText.contains(process)) << lastText.toStdString();
    EXPECT_TRUE(notice.isVisible());
    EXPECT_TRUE(notice.findChild<QLabel*>()->text().contains(process));
    showPage(2);
    typeInto("groupName", "team");
    typeInto("gid", "600");
    answer({"Stop Waiting", "OK"});
    click("createNewGroupButton");
    EXPECT_EQ(asked, (QStringList{"Waiting", "Not Possible"}));
    EXPECT_TRUE(lastText.contains(process)) << lastText.toStdString();
    EXPECT_TRUE(host.runs.empty());
    holder.reset();
    answer({"Cancel", "Go On"});
    clickTitled("Try Again");
    EXPECT_EQ(text("groupName"), "team");
    clickTitled("Try Again");
    EXPECT_EQ(text("groupName"), "");
    EXPECT_FALSE(notice.isVisible());
    EXPECT_EQ(columnOf("normalTableView", "ShareName"), std::vector<std::string>{"Docs"});
}

} // namespace
