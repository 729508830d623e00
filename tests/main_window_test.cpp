// The application's own window, used with mouse and keys.

#include "frontends/qt/QtFrontend.h"
#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "support/AppFixture.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTabBar>
#include <QTableView>
#include <QTest>
#include <QTimer>

namespace {

class MainWindow : public AppFixture {
  protected:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("QT_LOGGING_RULES", "default.warning=false");
        frontend = std::make_unique<QtFrontend>(argc, arguments, QtFrontend::Manner::Interactive);
        host.host().setPresenter(frontend->presenter());
    }

    void TearDown() override { frontend.reset(); } // before the interface that it shows

    void open() {
        start();
        NSApp().mainWindow()->makeKeyAndOrderFront();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&widget<QWidget>("mainWindow")));
    }

    template <class Widget>
    Widget& widget(const std::string& name) {
        for (QWidget* each : QApplication::allWidgets()) {
            if (each->objectName().toStdString() == name && qobject_cast<Widget*>(each) != nullptr) {
                return *qobject_cast<Widget*>(each);
            }
        }
        throw std::logic_error("the window does not show " + name);
    }

    void showPage(int page) {
        auto* bar = widget<QWidget>("mainTabView").findChild<QTabBar*>();
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(page).center());
        QApplication::processEvents();
    }

    void click(const std::string& button) { QTest::mouseClick(&widget<QPushButton>(button), Qt::LeftButton); }

    void clickTitled(const QString& title) {
        for (auto* each : widget<QWidget>("mainWindow").findChildren<QPushButton*>()) {
            if (each->text() == title && each->isVisible()) {
                QTest::mouseClick(each, Qt::LeftButton);
                return;
            }
        }
        FAIL() << "no button " << title.toStdString();
    }

    void typeInto(const std::string& field, const QString& keys) {
        auto& edit = widget<QLineEdit>(field);
        edit.setFocus();
        edit.selectAll();
        QTest::keyClicks(&edit, keys);
    }

    int argc = 1;
    char program[7] = "window";
    char* arguments[2] = {program, nullptr};
    std::unique_ptr<QtFrontend> frontend;
};

TEST_F(MainWindow, EveryNamedControlOfTheInterfaceFileIsShown) {
    open();
    for (int page = 0; page < 5; ++page) {
        showPage(page);
    }
    QTest::qWait(50); // the settings' other pages are built when nothing else is to do
    const std::function<void(const platform::InterfaceNode&)> visit =
        [&](const platform::InterfaceNode& node) {
            if (node.element && !node.element->name().empty() && node.kind != "item") {
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
    EXPECT_FALSE(widget<QLineEdit>("shareName").isVisible());
    clickTitled("Edit Share");
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
    EXPECT_EQ(widget<QLabel>("selectedShareName").text(), "Films");
    // The button says what it would do to the name as it is typed.
    EXPECT_EQ(widget<QPushButton>("createNewShare").text(), "Update Share");
    typeInto("shareName", "Filmsx");
    EXPECT_EQ(widget<QPushButton>("createNewShare").text(), "Create New Share");
    showPage(1);
    EXPECT_FALSE(widget<QLineEdit>("shareName").isVisible());
}

TEST_F(MainWindow, APasswordIsAskedForOnASheetUntilBothFieldsAgree) {
    addGroup("staff", "20");
    addUser("alice", "501");
    open();
    showPage(1);
    auto& table = widget<QTableView>("userTableView");
    QTest::mouseClick(table.viewport(), Qt::LeftButton, {},
                      table.visualRect(table.model()->index(0, 0)).center());
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

TEST_F(MainWindow, AMenuPicksThePageOfTheSettingsAndAnotherShowsTheAboutPanel) {
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

TEST_F(MainWindow, ASlipInTheMenuDoesNotRewriteTheShares) {
    addShare("Docs", "/shares/docs", "0");
    open();
    QAction* update = nullptr;
    for (auto* action : widget<QWidget>("mainWindow").findChildren<QAction*>()) {
        update = action->text().startsWith("Update Shares") ? action : update;
    }
    ASSERT_NE(update, nullptr);
    QStringList asked;
    QStringList answers;
    QTimer finger;
    finger.callOnTimeout([&] {
        auto* alert = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (alert == nullptr || answers.isEmpty()) {
            return;
        }
        asked.append(alert->windowTitle());
        for (const QString answer = answers.takeFirst(); auto* button : alert->buttons()) {
            if (button->text() == answer) {
                QTest::mouseClick(button, Qt::LeftButton);
            }
        }
    });
    finger.start(5);
    answers = {"No"};
    update->trigger();
    EXPECT_TRUE(host.runs.empty());
    answers = {"Yes", "OK"};
    update->trigger();
    EXPECT_EQ(asked, (QStringList{"Update Shares for Jaguar…", "Update Shares for Jaguar…",
                                  "Shares Updated for Jaguar"}));
    EXPECT_FALSE(host.runs.empty());
}

} // namespace
