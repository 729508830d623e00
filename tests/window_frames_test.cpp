// Sheets, alerts, the drawer, pages and panels as a user sees them, the window's end, and the pictures.

#include "support/WindowFixture.h"

namespace {

TEST_F(Window, ASheetBlocksTheWindowUntilItIsAnswered) {
    show();
    bool ended = false;
    NSApp().beginSheet(desk.sheet, NSApp().mainWindow(), [&ended](NSWindow* sheet, int) {
        ended = true;
        sheet->orderOut();
    });
    QWidget* sheet = widget<QWidget>("sheet");
    ASSERT_TRUE(QTest::qWaitForWindowActive(sheet));
    auto* press = widget<QWidget>("press");
    QWidget* main = widget<QWidget>("main");
    QTest::mouseClick(main->windowHandle(), Qt::LeftButton, {}, press->mapTo(main, press->rect().center()));
    EXPECT_EQ(desk.told, Told{});
    sheet->close();
    QTest::keyClick(sheet, Qt::Key_Escape);
    EXPECT_TRUE(sheet->isVisible());
    auto* secret = widget<QLineEdit>("secret");
    EXPECT_EQ(secret->echoMode(), QLineEdit::Password);
    secret->setFocus();
    QTest::keyClicks(secret, "pass");
    EXPECT_EQ(desk.secret->stringValue(), "pass");
    EXPECT_FALSE(secret->isUndoAvailable());
    QTest::keyClick(secret, Qt::Key_Return);
    EXPECT_TRUE(ended);
    EXPECT_FALSE(sheet->isVisible());
}

TEST_F(Window, AnAlertIsAnsweredByKeysAndNeverChangesAnythingUnasked) {
    show();

    struct Case {
        std::string first;
        std::optional<std::string> second;
        std::optional<std::string> third;
        Qt::Key key;
        int answer;
    };

    const std::vector<Case> cases = {
        {"Delete", "Cancel", std::nullopt, Qt::Key_Return, NSAlertDefaultReturn},
        {"Delete", "Cancel", std::nullopt, Qt::Key_Escape, NSAlertAlternateReturn},
        {"No", "Yes", std::nullopt, Qt::Key_Escape, NSAlertDefaultReturn},
        {"Pay", "Card", "Cancel", Qt::Key_Escape, NSAlertOtherReturn},
        {"OK", std::nullopt, std::nullopt, Qt::Key_Escape, NSAlertDefaultReturn},
    };
    for (const Case& each : cases) {
        QTimer::singleShot(0, [&each] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            EXPECT_TRUE(box->text().contains("About &lt;b&gt;")); // markup in a name is shown verbatim
            QTest::keyClick(box, each.key);
        });
        EXPECT_EQ(NSRunAlertPanel("About <b>", "Message", each.first, each.second, each.third), each.answer)
            << each.first;
    }
}

TEST_F(Window, TheDrawerWidensTheWindowAndGivesTheRoomBack) {
    show();
    QWidget* main = widget<QWidget>("main");
    const int before = main->width();
    const int table = widget<QWidget>("table")->width();
    EXPECT_FALSE(widget<QWidget>("drawer")->isVisible());
    desk.drawer->toggle();
    QApplication::processEvents();
    EXPECT_TRUE(widget<QLabel>("inside")->isVisible());
    EXPECT_EQ(widget<QWidget>("drawer")->width(), 200);
    EXPECT_EQ(main->width(), before + std::min(200, main->screen()->availableGeometry().width() - before));
    EXPECT_GE(widget<QWidget>("table")->width(), table - 2);
    desk.drawer->close();
    QApplication::processEvents();
    EXPECT_FALSE(widget<QLabel>("inside")->isVisible());
    EXPECT_EQ(main->width(), before);
}

TEST_F(Window, TabsSelectThePageAndFollowTheProgram) {
    show();
    auto* bar = widget<QWidget>("tabs")->findChild<QTabBar*>();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(1).center());
    EXPECT_EQ(desk.told, Told{"page 1"});
    EXPECT_TRUE(widget<QLabel>("second")->isVisible());
    desk.tabs->selectTabViewItemAtIndex(0);
    QApplication::processEvents();
    EXPECT_EQ(bar->currentIndex(), 0);
    EXPECT_TRUE(widget<QTableView>("table")->isVisible());
    EXPECT_EQ(desk.told, (Told{"page 1", "page 0"}));
}

TEST_F(Window, APanelIsKeyWhileItIsInFrontAndEscapeClosesIt) {
    show();
    desk.panel->makeKeyAndOrderFront();
    QWidget* panel = widget<QWidget>("panel");
    ASSERT_TRUE(QTest::qWaitForWindowActive(panel));
    EXPECT_EQ(desk.told, Told{"key"});
    widget<QWidget>("main")->activateWindow();
    QApplication::processEvents();
    EXPECT_EQ(desk.told.back(), "no longer key");
    panel->activateWindow();
    QApplication::processEvents();
    EXPECT_EQ(desk.told.back(), "key");
    QTest::keyClick(panel, Qt::Key_Escape);
    EXPECT_FALSE(panel->isVisible());
    EXPECT_FALSE(desk.panel->isVisible());
    EXPECT_EQ(desk.told.back(), "no longer key");
}

TEST_F(Window, ATimerWithoutAnIntervalCatchesUpOnceAFrame) {
    int ticks = 0;
    {
        const NSTimer timer(0, [&ticks] { ++ticks; });
        QTest::qWait(200);
    }
    EXPECT_GT(ticks, 50); // far more than there were frames
    EXPECT_LT(ticks, 2000);
    const int before = ticks;
    QTest::qWait(50);
    EXPECT_EQ(ticks, before);
}

TEST_F(Window, ClosingTheMainWindowEndsTheApplication) {
    QTimer::singleShot(50, [this] { widget<QWidget>("main")->close(); });
    EXPECT_EQ(frontend->run([] {
        NSApp().mainWindow()->makeKeyAndOrderFront();
        NSApp().finishLaunching();
    }),
              0);
    EXPECT_TRUE(NSApp().isTerminated());
    EXPECT_EQ(desk.told, (Told{"launched", "will terminate"}));
    EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty());
}

class Pictures : public Window {
  protected:
    Pictures() : Window(frontend::QtFrontend::Manner::Silent) {}
};

TEST_F(Pictures, EveryPageSheetAndPanelIsWrittenUnderItsName) {
    desk.rows = 3;
    desk.table->reloadData();
    const auto folder = host.root() / "pictures";
    EXPECT_EQ(frontend->takeSnapshots(folder.string()).text(), "");
    for (const char* name : {"first", "first-drawer", "second", "sheet", "panel"}) {
        const QImage image(QString::fromStdString((folder / (std::string(name) + ".png")).string()));
        EXPECT_GT(image.width(), 50) << name;
    }
    EXPECT_TRUE(NSRunAlertPanel("Unasked", "?", "No", "Yes", std::nullopt) == NSAlertDefaultReturn);
}

TEST_F(Pictures, AFolderThatCannotBeMadeIsNamed) {
    host.write("file", "");
    const std::string error = frontend->takeSnapshots((host.root() / "file" / "pictures").string()).text();
    EXPECT_NE(error.find("file/pictures"), std::string::npos);
}

} // namespace
