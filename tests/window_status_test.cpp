// What the window says after an action: what was done or why not, and everything that happened.

#include "frontends/qt/RunProgress.h"
#include "review/HistoryStore.h"
#include "support/HistoryWindowFixture.h"

#include <QAbstractItemView>

#include <utility>

namespace {

class WindowStatusTest : public WindowWithHistory {
  protected:
    std::string status() { return widget<QLabel>("statusText").accessibleName().toStdString(); }

    void slowDown(int milliseconds) {
        host.onRun = [this, milliseconds](const RecordedRun& run) {
            QTest::qSleep(milliseconds); // simulates a slow tool
            return carryOut(run);
        };
    }

    /// Returns the dialog, or null while it is not shown.
    static QDialog* progress() {
        for (QWidget* each : QApplication::topLevelWidgets()) {
            if (each->objectName() == "progress" && each->isVisible()) {
                return qobject_cast<QDialog*>(each);
            }
        }
        return nullptr;
    }

    void share(const QString& name, int overSMB = 1) {
        clickTitled("New Share");
        typeInto("shareName", name);
        typeInto("directory", QString::fromStdString(host.root().string()));
        control<NSPopUpButton>("sharingSMB").performSelect(overSMB);
        answer({"Go On"});
        click("createNewShare");
    }

    /// Returns the panel's lines with their outcomes.
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
    host.write("etc/smb.conf", "[Docs]\n\tpath = " + host.root().string() + "\n");
    openWithHistory();
    frontend->useServer({"smb://127.0.0.1:4455/", std::string(400, 'w'), false});
    EXPECT_EQ(status(), "");
    clickRow("normalTableView", 0);
    clickTitled("Edit Share");
    typeInto("shareName", "My Docs");
    answer({"Go On"});
    click("createNewShare");
    EXPECT_EQ(text("shareName"), "") << "no longer the editor's";
    EXPECT_EQ(status(), "My Docs is shared at smb://127.0.0.1:4455/My%20Docs.");
    QApplication::processEvents();
    EXPECT_EQ(widget<QLabel>("statusText").text().toStdString(), status()) << "with all its words";
    click("statusCopy");
    EXPECT_EQ(QApplication::clipboard()->text(), "smb://127.0.0.1:4455/My%20Docs");
    ASSERT_TRUE(widget<QPushButton>("statusUndo").isVisible());
    answer({"Yes"});
    click("statusUndo");
    EXPECT_TRUE(lastText.contains("take back “Share \"My Docs\" created”?")) << lastText.toStdString();
    EXPECT_EQ(columnOf("normalTableView", "ShareName"), std::vector<std::string>{"Docs"});
    EXPECT_FALSE(widget<QPushButton>("statusUndo").isVisible());
    EXPECT_FALSE(widget<QPushButton>("statusCopy").isVisible());
}

TEST_F(WindowStatusTest, NoAddressIsShownIfNothingServesIt) {
    host.write("etc/smb.conf", "[Old]\n\tpath = " + host.root().string() + "\n");
    openWithHistory();
    bool runs = false;
    frontend->useServer({"smb://vm/", "", false, [&] { return runs; }}); // the computer's own
    share("Newest");
    EXPECT_EQ(status(), "Newest will be shared over SMB as soon as a server runs.");
    runs = true;
    frontend->useServer({"smb://127.0.0.1:4455/", "SMB server", false, [&] { return runs; }});
    share("New", 0); // its folder is offered under another name
    EXPECT_EQ(status(), "Share \"New\" created.");
    EXPECT_FALSE(widget<QPushButton>("statusCopy").isVisible());
    runs = false;
    QEvent activated(QEvent::WindowActivate);
    QApplication::sendEvent(&widget<QWidget>("mainWindow"), &activated);
    EXPECT_TRUE(widget<QLabel>("serverState").accessibleName().startsWith("The SMB server has ended"));
    share("Newer", 1);
    EXPECT_EQ(status(), "Newer will be shared over SMB as soon as a server runs.");
}

TEST_F(WindowStatusTest, AnActionWhosePermissionEndsMidwaySaysWhatWasDone) {
    openWithHistory();
    host.onRun = [this](const RecordedRun& run) {
        EXPECT_FALSE(frontend->presenter()->runAdministratorDialog({}));
        return carryOut(run);
    };
    showPage(2);
    typeInto("groupName", "team");
    typeInto("gid", "600");
    answer({"Yes", "Refuse"});
    click("createNewGroupButton");
    EXPECT_EQ(status(),
              "Group \"team\" created.  The rest was not done: the permission for it was not given.");
}

TEST_F(WindowStatusTest, ThePanelAddsNewLinesAndKeepsTheSelectedOne) {
    openWithHistory();
    host.onListing = [](const std::string&) -> std::optional<std::string> { return "310\n"; };
    useMenu("Restart SMB Server");
    const auto before = activity().size();
    auto& list = widget<QAbstractItemView>("activityList");
    list.setCurrentIndex(list.model()->index(0, 1));
    useMenu("Restart SMB Server");
    useMenu("Restart SMB Server");
    EXPECT_EQ(list.model()->rowCount(), before + 2);
    EXPECT_EQ(list.currentIndex().row(), 0);
    EXPECT_TRUE(list.selectionModel()->hasSelection());
}

TEST_F(WindowStatusTest, AFailureIsShownInTheToolsOwnWordsInTheAlertAndTheLine) {
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
    EXPECT_TRUE(status().ends_with("the disk is <full>")) << status();
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
    EXPECT_EQ(status(), "Password of \"alice\" set.");
    EXPECT_FALSE(widget<QPushButton>("statusUndo").isVisible());
    const QString lines = activity().join('\n');
    EXPECT_TRUE(lines.contains("dscl . -passwd /Users/alice ********|done")) << lines.toStdString();
    EXPECT_FALSE(lines.contains("geheim"));
}

TEST_F(WindowStatusTest, AServerThatCouldNotBeStartedIsReportedInTheWindow) {
    openWithHistory();
    frontend->useServer({"", "port 4455 is in use", true});
    EXPECT_EQ(status(), "port 4455 is in use");
}

TEST_F(WindowStatusTest, ALongActionShowsItsProgressAndStopsAfterTheCurrentRun) {
    constexpr int users = 60;
    for (int user = 0; user < users; ++user) {
        addUser("user" + std::to_string(user), std::to_string(501 + user));
    }
    openWithHistory();
    slowDown(20);
    showPage(1);
    answer({"Go On", "Stop"}); // so many accounts cause a question
    clickTitled("Enable All");
    EXPECT_TRUE(lastText.contains(" of 60\nuser")) << lastText.toStdString();
    const int made = static_cast<int>(host.runs.size());
    EXPECT_GT(made, 0);
    EXPECT_LT(made, users);
    EXPECT_EQ(status(), "Stopped: " + std::to_string(made) + " of 60 steps are done.");
    EXPECT_EQ(std::ranges::count(columnOf("userTableView", "Public Shared"), "YES"), made);
    EXPECT_TRUE(host.alerts.empty());
    EXPECT_TRUE(widget<QPushButton>("statusUndo").isVisible());
    // The next action may make runs again.
    clickRow("userTableView", users - 1);
    answer({"Go On"});
    clickTitled("Share");
    EXPECT_EQ(columnOf("userTableView", "Public Shared").back(), "YES");
}

TEST_F(WindowStatusTest, RunsPreventedByAStopAreNotListed) {
    constexpr int shares = 40;
    for (int share = 0; share < shares; ++share) {
        addShare("share" + std::to_string(share), "/shares/" + std::to_string(share));
    }
    openWithHistory();
    slowDown(30);
    answer({"Yes", "Stop"});
    useMenu("Delete All Shares");
    const auto made = static_cast<qsizetype>(host.runs.size());
    ASSERT_LT(made, shares);
    const QStringList lines = activity();
    EXPECT_EQ(lines.size(), made) << lines.join('\n').toStdString();
    EXPECT_EQ(lines.filter("|done").size(), made);
}

TEST_F(WindowStatusTest, AKeyMeantForThePreviousQuestionDoesNotStopTheAction) {
    constexpr int users = 40;
    for (int user = 0; user < users; ++user) {
        addUser("user" + std::to_string(user), std::to_string(501 + user));
    }
    openWithHistory();
    bool isAsked = false;
    bool isPressed = false;
    host.onRun = [&](const RecordedRun& run) {
        if (!std::exchange(isAsked, true)) { // the right has expired
            QTimer::singleShot(600, &widget<QWidget>("mainWindow"), [this] { answer({"Allow"}); });
            EXPECT_TRUE(frontend->presenter()->runAdministratorDialog({}));
        }
        if (host.runs.size() == 2) {
            EXPECT_EQ(progress(), nullptr) << "only the user took so long";
        }
        if (auto* dialog = progress(); dialog != nullptr && !std::exchange(isPressed, true)) {
            for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape, Qt::Key_Space}) {
                QTest::keyClick(dialog->findChild<QPushButton*>(), key);
            }
        }
        QTest::qSleep(30);
        return carryOut(run);
    };
    showPage(1);
    answer({"Go On"});
    clickTitled("Enable All");
    EXPECT_TRUE(isPressed);
    EXPECT_EQ(std::ranges::count(columnOf("userTableView", "Public Shared"), "YES"), users);
}

TEST_F(WindowStatusTest, AnActionOnOneObjectShowsItsProgressAndCannotBeStopped) {
    addGroup("staff", "20");
    openWithHistory();
    showPage(1);
    typeInto("fullName", "Ann");
    typeInto("shortName", "ann");
    typeInto("uid", "501");
    bool isShown = false;
    host.onRun = [&](const RecordedRun& run) {
        if (auto* dialog = progress()) {
            isShown = true;
            EXPECT_EQ(dialog->findChild<QPushButton*>(), nullptr);
            QTest::qSleep(510);
            QTest::keyClick(dialog, Qt::Key_Escape);
            EXPECT_TRUE(dialog->isVisible());
        }
        QTest::qSleep(100);
        return carryOut(run);
    };
    answer({"Yes"});
    click("addNewUserButton");
    EXPECT_TRUE(isShown);
    EXPECT_GE(host.runs.size(), 12U);
}

TEST_F(WindowStatusTest, AnActionWithSeveralRunsPerObjectStopsBetweenTwoObjects) {
    openWithHistory();
    frontend::Activity activity;
    frontend::RefreshQueue queue;
    frontend::RunProgress running([] { return nullptr; }, activity, queue);
    std::vector<bool> stops;
    running.setStop([&stops](bool madeStill) { stops.push_back(madeStill); });
    running.begin(100, review::stopsOf("updateSharesFor10pt2:"));
    const std::vector<std::string> first = {".", "-create", "/config/Brindle/Docs"};
    const std::vector<std::string> second = {".", "-delete", "/config/Brindle/Films"};
    EXPECT_TRUE(running.toolWillRun("/usr/bin/nicl", first));
    QTest::qSleep(450);
    answer({"Stop"});
    for (int run = 0; run < 10 && !answers.isEmpty(); ++run) {
        QTest::qSleep(60);
        EXPECT_TRUE(running.toolWillRun("/usr/bin/nicl", first));
    }
    QApplication::processEvents();
    EXPECT_TRUE(running.toolWillRun("/usr/bin/nicl", first)) << "a share must not be left half done";
    EXPECT_TRUE(stops.empty());
    EXPECT_FALSE(running.toolWillRun("/usr/bin/nicl", second));
    EXPECT_EQ(stops, std::vector<bool>{false});
    EXPECT_TRUE(activity.stopOfEvent().starts_with("Stopped: "));
}

TEST_F(WindowStatusTest, AChangeByAnotherProgramIsNotOfferedForUndo) {
    addUser("ann", "501");
    openWithHistory();
    host.onListing = [this](const std::string&) -> std::optional<std::string> {
        review::HistoryEntry entry; // while the action restarts the server, somebody deletes ann
        entry.title = "User \"ann\" deleted";
        entry.records.push_back({"/users/ann", review::RecordChange::State::value_type{}, std::nullopt});
        EXPECT_TRUE(review::HistoryStore((host.root() / "history.db").string()).add(entry).isOk());
        return "310\n";
    };
    useMenu("Restart SMB Server");
    EXPECT_EQ(status(), "Done.");
    EXPECT_FALSE(widget<QPushButton>("statusUndo").isVisible());
}

TEST_F(WindowStatusTest, OutputThatWasAskedForIsNoFailureAndEachAlertHasItsOwnReason) {
    frontend::Activity activity;
    activity.toolWillRun("/usr/bin/smbstatus", std::vector<std::string>{"--json"});
    activity.toolDidWrite("{\"sessions\": {}}");
    EXPECT_FALSE(activity.entries().back().hasFailed);
    EXPECT_EQ(activity.runsOfEvent(), 0);
    EXPECT_EQ(activity.failureOfEvent(), "");
    activity.toolWillRun("/usr/bin/nicl", std::vector<std::string>{".", "-create", "/users/ann"});
    activity.toolDidWrite("nicl: the disk is full\n");
    EXPECT_EQ(activity.takeReason(), "nicl: the disk is full");
    EXPECT_EQ(activity.takeReason(), "");
    EXPECT_EQ(activity.failureOfEvent(), "nicl: the disk is full");
}

} // namespace
