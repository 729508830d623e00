// What the window says after an action: what was done or why not, and all that happened.

#include "support/HistoryWindowFixture.h"

#include <QAbstractItemView>

namespace {

class WindowStatusTest : public WindowWithHistory {
  protected:
    std::string status() { return widget<QLabel>("statusText").toolTip().toStdString(); }

    void share(const QString& name) {
        clickTitled("New Share");
        typeInto("shareName", name);
        typeInto("directory", QString::fromStdString(host.root().string()));
        control<NSPopUpButton>("sharingSMB").performSelect(1);
        answer({"Go On"});
        click("createNewShare");
    }

    /// The panel's lines: what, outcome.
    QStringList activity() {
        useMenu("Activity…");
        const auto* model = widget<QAbstractItemView>("activityList").model();
        QStringList lines;
        for (int row = 0; row < model->rowCount(); ++row) {
            lines.append(model->index(row, 1).data().toString() + QLatin1Char('|') +
                         model->index(row, 2).data().toString());
        }
        return lines;
    }
};

TEST_F(WindowStatusTest, AShareIsAnnouncedWithItsAddressToCopyAndTakenBackFromThere) {
    openWithHistory();
    frontend->useServer("smb://127.0.0.1:4455/", "SMB server", false);
    EXPECT_EQ(status(), "");
    share("My Docs");
    EXPECT_EQ(status(), "My Docs is shared at smb://127.0.0.1:4455/My%20Docs.");
    click("statusCopy");
    EXPECT_EQ(QApplication::clipboard()->text(), "smb://127.0.0.1:4455/My%20Docs");
    ASSERT_TRUE(widget<QPushButton>("statusUndo").isVisible());
    answer({"Go On"});
    click("statusUndo");
    EXPECT_EQ(columnOf("normalTableView", "ShareName"), std::vector<std::string>{});
    EXPECT_FALSE(widget<QPushButton>("statusUndo").isVisible());
    EXPECT_FALSE(widget<QPushButton>("statusCopy").isVisible());
}

TEST_F(WindowStatusTest, AFailureIsSaidInTheToolsOwnWordsInTheAlertAndTheLine) {
    openWithHistory();
    host.onRun = [this](const RecordedRun& run) -> TestHost::RunAnswer {
        if (run.arguments.size() > 2 && run.arguments[1] == "-create") {
            return {"the disk is <full>\n", 0};
        }
        return carryOut(run);
    };
    clickTitled("New Share");
    typeInto("shareName", "Docs");
    typeInto("directory", QString::fromStdString(host.root().string()));
    answer({"Go On", "OK"});
    click("createNewShare");
    ASSERT_EQ(asked, (QStringList{"Review", "Create Share Failed"}));
    EXPECT_TRUE(lastText.contains("the disk is &lt;full&gt;")) << lastText.toStdString();
    EXPECT_TRUE(status().ends_with("the disk is &lt;full&gt;")) << status();
    EXPECT_TRUE(widget<QPushButton>("statusMore").isVisible());
    const QStringList lines = activity();
    EXPECT_TRUE(lines.contains("/usr/bin/nicl . -create /config/Brindle/Docs|failed"))
        << lines.join('\n').toStdString();
}

TEST_F(WindowStatusTest, APasswordIsNeverListed) {
    addGroup("staff", "20");
    addUser("alice", "501");
    openWithHistory();
    showPage(1);
    clickRow("userTableView", 0);
    click("changePasswordButton");
    typeInto("passwordSecureText1", "geheim");
    typeInto("passwordSecureText2", "geheim");
    QTest::keyClick(&widget<QLineEdit>("passwordSecureText2"), Qt::Key_Return);
    EXPECT_EQ(status(), "Password of &quot;alice&quot; set.");
    EXPECT_FALSE(widget<QPushButton>("statusUndo").isVisible());
    const QString lines = activity().join('\n');
    EXPECT_TRUE(lines.contains("dscl . -passwd /Users/alice ********|done")) << lines.toStdString();
    EXPECT_FALSE(lines.contains("geheim"));
}

TEST_F(WindowStatusTest, AServerThatCouldNotBeStartedIsSaidInTheWindow) {
    openWithHistory();
    frontend->useServer("", "port 4455 is in use", true);
    EXPECT_EQ(status(), "port 4455 is in use");
}

TEST_F(WindowStatusTest, ALongActionSaysHowFarItIsAndStopsAfterTheRunUnderWay) {
    constexpr int users = 60;
    for (int user = 0; user < users; ++user) {
        addUser("user" + std::to_string(user), std::to_string(501 + user));
    }
    openWithHistory();
    host.onRun = [this](const RecordedRun& run) {
        QTest::qSleep(20); // a tool takes its time
        return carryOut(run);
    };
    showPage(1);
    answer({"Go On", "Stop"}); // so many accounts are worth a question
    clickTitled("Enable All");
    EXPECT_TRUE(lastText.contains(" of 60\nuser")) << lastText.toStdString();
    const int made = static_cast<int>(host.runs.size());
    EXPECT_GT(made, 0);
    EXPECT_LT(made, users);
    EXPECT_EQ(status(), "Stopped: " + std::to_string(made) + " of 60 steps are done.");
    EXPECT_EQ(std::ranges::count(columnOf("userTableView", "Public Shared"), "YES"), made);
    EXPECT_TRUE(host.alerts.empty());
    EXPECT_TRUE(widget<QPushButton>("statusUndo").isVisible());
    // The next action begins with the right again.
    clickRow("userTableView", users - 1);
    answer({"Go On"});
    clickTitled("Share");
    EXPECT_EQ(columnOf("userTableView", "Public Shared").back(), "YES");
}

} // namespace
