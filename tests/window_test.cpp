// The window as a user meets it: real mouse and key events on Qt's offscreen platform, over a small interface
// of its own.

#include "Binding.h"
#include "Host.h"
#include "Interface.h"
#include "KWIntegerFormatter.h"
#include "NSAlert.h"
#include "NSApplication.h"
#include "NSButton.h"
#include "NSMatrix.h"
#include "NSPopUpButton.h"
#include "NSTabView.h"
#include "NSTableView.h"
#include "NSTextField.h"
#include "NSWindow.h"
#include "ObjectClass.h"
#include "QtFrontend.h"
#include "TestHost.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QTabBar>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr const char* interfaceFile = R"(<interface class="Desk">
  <window name="main" title="Desk" width="500" height="400">
    <tabView outlet="tabs" delegate="yes">
      <tab label="First"><column>
        <tableView outlet="table" multiple="yes" stretch="1">
          <column id="Name" title="Name" width="100"/><column id="Size" title="Size" width="80"/>
        </tableView>
        <row>
          <textField outlet="number" delegate="yes" action="typed:"/>
          <button outlet="press" title="Press &amp; Go" action="pressed:" key="return"/>
          <checkBox outlet="check" title="Check" action="pressed:"/>
          <popUp outlet="popUp" typeAhead="yes" action="chosen:">
            <item title="Apple"/><item title="Banana"/><item title="Cherry"/>
          </popUp>
          <matrix outlet="matrix" rows="1" columns="2" action="pressed:"><cell title="A"/><cell title="B"/></matrix>
        </row>
      </column></tab>
      <tab label="Second"><column><label name="second" text="Second page"/></column></tab>
    </tabView>
    <drawer outlet="drawer" edge="right" width="200"><column><label name="inside" text="Inside"/></column></drawer>
  </window>
  <sheet outlet="sheet" title="Sheet"><column>
    <secureField outlet="secret"/><button title="Done" action="endSheet:" key="return"/>
  </column></sheet>
  <panel outlet="panel" title="Panel" delegate="yes" width="200" height="100"><column><label text="Hello"/></column></panel>
</interface>)";

/// Stands behind the interface and writes down what it is told.
struct Desk : NSApplicationDelegate,
              NSTableViewDataSource,
              NSTableViewDelegate,
              NSTabViewDelegate,
              NSTextFieldDelegate,
              NSWindowDelegate {
    NSTabView* tabs = nullptr;
    NSTableView* table = nullptr;
    NSTextField* number = nullptr;
    NSButton* press = nullptr;
    NSButton* check = nullptr;
    NSPopUpButton* popUp = nullptr;
    NSMatrix* matrix = nullptr;
    NSDrawer* drawer = nullptr;
    NSWindow* sheet = nullptr;
    NSSecureTextField* secret = nullptr;
    NSWindow* panel = nullptr;
    int rows = 0;
    int cellsAsked = 0;
    std::vector<std::string> told;

    void typed(NSControl*) { told.push_back("typed " + number->stringValue()); }

    void pressed(NSControl* sender) { told.push_back("pressed " + sender->name()); }

    void chosen(NSControl*) { told.push_back("chose " + popUp->titleOfSelectedItem().value_or("nothing")); }

    void endSheet(NSControl*) { NSApp().endSheet(sheet, 0); }

    void applicationDidFinishLaunching() override { told.emplace_back("launched"); }

    bool applicationShouldTerminateAfterLastWindowClosed() override { return true; }

    void applicationWillTerminate() override { told.emplace_back("will terminate"); }

    int numberOfRowsInTableView(NSTableView*) override { return rows; }

    std::string tableViewObjectValueForTableColumn(NSTableView*, const NSTableColumn& column,
                                                   int row) override {
        ++cellsAsked;
        return column.identifier + std::to_string(row);
    }

    void tableViewSelectionDidChange(NSTableView* changed) override {
        std::string rowsText = "selected";
        for (const int row : changed->selectedRows()) {
            rowsText += " " + std::to_string(row);
        }
        told.push_back(rowsText);
    }

    void tabViewDidSelectTabViewItem(NSTabView*, int index) override {
        told.push_back("page " + std::to_string(index));
    }

    void controlDidFailToValidatePartialString(NSTextField*, const std::string& partial,
                                               const std::string&) override {
        told.push_back("refused " + partial);
    }

    void windowDidBecomeKey(NSWindow*) override { told.emplace_back("key"); }

    void windowDidResignKey(NSWindow*) override { told.emplace_back("no longer key"); }
};

using Told = std::vector<std::string>;

class Window : public ::testing::Test {
  protected:
    explicit Window(QtFrontend::Manner manner = QtFrontend::Manner::Interactive) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("QT_LOGGING_RULES", "default.warning=false"); // what that platform cannot do
        frontend = std::make_unique<QtFrontend>(argc, arguments, manner);
        host.host().setPresenter(frontend->presenter());
        auto description = platform::describeClass<Desk>("Desk");
        description.outlet("tabs", &Desk::tabs).outlet("table", &Desk::table).outlet("number", &Desk::number);
        description.outlet("press", &Desk::press).outlet("check", &Desk::check).outlet("popUp", &Desk::popUp);
        description.outlet("matrix", &Desk::matrix)
            .outlet("drawer", &Desk::drawer)
            .outlet("sheet", &Desk::sheet);
        description.outlet("secret", &Desk::secret).outlet("panel", &Desk::panel);
        description.action("typed:", &Desk::typed).action("pressed:", &Desk::pressed);
        description.action("chosen:", &Desk::chosen).action("endSheet:", &Desk::endSheet);
        platform::registerClass(description.take());
        host.write("Desk.xml", interfaceFile);
        interface = platform::Interface::load((host.root() / "Desk.xml").string(), &desk);
        desk.number->setFormatter(std::make_shared<KWIntegerFormatter>());
    }

    void TearDown() override { frontend.reset(); } // before the interface that it shows

    void show() {
        NSApp().mainWindow()->makeKeyAndOrderFront();
        ASSERT_TRUE(QTest::qWaitForWindowActive(widget<QWidget>("main")));
        desk.told.clear();
    }

    template <class Widget>
    Widget* widget(const char* name) {
        for (QWidget* each : QApplication::allWidgets()) {
            if (each->objectName() == name) {
                return qobject_cast<Widget*>(each);
            }
        }
        return nullptr;
    }

    QLineEdit* numberEdit() { return widget<QLineEdit>("number"); }

    TestHost host;
    Desk desk;
    int argc = 1;
    char program[7] = "window";
    char* arguments[2] = {program, nullptr};
    std::unique_ptr<platform::Interface> interface;
    std::unique_ptr<QtFrontend> frontend;
};

TEST_F(Window, AnEditThatTheFieldRefusesChangesNeitherTextNorCaretNorSelection) {
    show();
    QLineEdit* edit = numberEdit();
    const auto drop = [edit](const QString& text) {
        QMimeData data;
        data.setText(text);
        QDragEnterEvent enter(QPoint(1, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(edit, &enter);
        QDropEvent event(QPointF(1, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(edit, &event);
    };
    const std::vector<std::pair<const char*, std::function<void()>>> edits = {
        {"refused 1x4", [edit] { QTest::keyClick(edit, 'x'); }},
        {"refused 13 44",
         [edit] {
             QApplication::clipboard()->setText("3 4");
             QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
         }},
        {"refused 1é4",
         [edit] {
             QInputMethodEvent event;
             event.setCommitString("é");
             QApplication::sendEvent(edit, &event);
         }},
        {"refused a1234", [&drop] { drop("a"); }},
    };
    for (const auto& [told, perform] : edits) {
        desk.number->setStringValue("1234");
        QApplication::processEvents();
        edit->setFocus();
        edit->setSelection(3, -2); // the caret at its start
        desk.told.clear();
        perform();
        EXPECT_EQ(desk.told, Told{told});
        EXPECT_EQ(edit->text(), "1234") << told;
        EXPECT_EQ(desk.number->stringValue(), "1234") << told;
        EXPECT_EQ(edit->selectedText(), "23") << told;
        EXPECT_EQ(edit->cursorPosition(), 1) << told;
    }
}

TEST_F(Window, AnEditThatTheFieldTakesIsSentOnceAndTheFieldTidiesUpWhenItIsLeft) {
    show();
    QLineEdit* edit = numberEdit();
    edit->setFocus();
    QTest::keyClicks(edit, "007");
    EXPECT_EQ(desk.told, (Told{"typed 0", "typed 00", "typed 007"}));
    QTest::keyClick(edit, Qt::Key_Backspace);
    QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(desk.number->stringValue(), edit->text().toStdString());
    desk.number->setStringValue("007");
    widget<QWidget>("table")->setFocus();
    EXPECT_EQ(edit->text(), "7");
    EXPECT_EQ(desk.number->stringValue(), "7");
}

TEST_F(Window, WhatTheProgramFillsInIsShownUnaskedAndIsNoEdit) {
    show();
    desk.number->setStringValue("-2");
    desk.check->setState(NSOnState);
    desk.popUp->selectItemAtIndex(2);
    desk.matrix->setStateAt(0, 1, NSOnState);
    QApplication::processEvents();
    EXPECT_EQ(numberEdit()->text(), "-2");
    EXPECT_TRUE(widget<QAbstractButton>("check")->isChecked());
    EXPECT_EQ(widget<QComboBox>("popUp")->currentText(), "Cherry");
    EXPECT_EQ(desk.told, Told{});
    numberEdit()->setFocus();
    numberEdit()->end(false);
    QTest::keyClick(numberEdit(), 'x');
    EXPECT_EQ(numberEdit()->text(), "-2");
}

TEST_F(Window, ButtonsBoxesAndCellsAreClickedThroughTheirModels) {
    show();
    EXPECT_EQ(widget<QAbstractButton>("press")->text(),
              "Press && Go"); // an ampersand, not an underlined blank
    QTest::mouseClick(widget<QWidget>("press"), Qt::LeftButton);
    QTest::mouseClick(widget<QWidget>("check"), Qt::LeftButton, {},
                      QPoint(8, widget<QWidget>("check")->height() / 2));
    EXPECT_EQ(desk.check->state(), NSOnState);
    auto cells = widget<QWidget>("matrix")->findChildren<QAbstractButton*>();
    QTest::mouseClick(cells.at(1), Qt::LeftButton, {}, QPoint(8, cells.at(1)->height() / 2));
    EXPECT_EQ(desk.matrix->stateAt(0, 0), NSOffState);
    EXPECT_EQ(desk.matrix->stateAt(0, 1), NSOnState);
    EXPECT_EQ(desk.told, (Told{"pressed press", "pressed check", "pressed matrix"}));
    desk.told.clear();
    numberEdit()->setFocus();
    QTest::keyClick(numberEdit(), Qt::Key_Return);
    EXPECT_EQ(desk.told, Told{"pressed press"});
    desk.press->setEnabled(false);
    QApplication::processEvents();
    QTest::keyClick(numberEdit(), Qt::Key_Return);
    EXPECT_EQ(desk.told, Told{"pressed press"});
}

TEST_F(Window, APopUpCountsTheSameChoiceAgainAndFollowsTypedLetters) {
    show();
    auto* combo = widget<QComboBox>("popUp");
    combo->setFocus();
    QTest::keyClick(combo, 'b');
    EXPECT_EQ(desk.popUp->indexOfSelectedItem(), 1);
    combo->showPopup();
    QTest::keyClick(combo->view(), Qt::Key_Return);
    EXPECT_EQ(desk.told, (Told{"chose Banana", "chose Banana"}));
    desk.popUp->removeAllItems();
    QApplication::processEvents();
    EXPECT_EQ(combo->currentIndex(), -1);
    EXPECT_EQ(combo->currentText(), "");
    for (int item = 0; item < 10'000; ++item) {
        desk.popUp->addItemWithTitle("user" + std::to_string(item));
    }
    QApplication::processEvents();
    EXPECT_EQ(combo->count(), 10'000);
    EXPECT_EQ(combo->currentText(), "user0");
}

TEST_F(Window, ManyChangesAreRedrawnOnce) {
    RefreshQueue queue;
    platform::Element element;
    int refreshes = 0;
    QObject owner;
    new Binding(&owner, queue, element.changed, [&refreshes] { ++refreshes; });
    refreshes = 0;
    for (int change = 0; change < 10'000; ++change) {
        element.changed.emit();
    }
    QApplication::processEvents();
    EXPECT_EQ(refreshes, 1);
}

TEST_F(Window, ATableAsksOnlyForTheCellsThatItDraws) {
    show();
    desk.rows = 100'000;
    desk.table->reloadData();
    QApplication::processEvents();
    auto* view = widget<QTableView>("table");
    EXPECT_EQ(view->model()->rowCount(), 100'000);
    view->scrollToBottom();
    QApplication::processEvents();
    desk.table->selectRow(50'000);
    QApplication::processEvents();
    EXPECT_TRUE(view->viewport()->rect().intersects(view->visualRect(view->model()->index(50'000, 0))));
    EXPECT_GT(desk.cellsAsked, 10);
    EXPECT_LT(desk.cellsAsked, 1000);
}

TEST_F(Window, SelectingRowsTellsOnceWhoeverDidIt) {
    show();
    desk.rows = 5;
    desk.table->reloadData();
    QApplication::processEvents();
    auto* view = widget<QTableView>("table");
    const auto click = [view](int row, Qt::KeyboardModifiers modifiers) {
        QTest::mouseClick(view->viewport(), Qt::LeftButton, modifiers,
                          view->visualRect(view->model()->index(row, 0)).center());
    };
    click(1, Qt::NoModifier);
    click(3, Qt::ControlModifier);
    EXPECT_EQ(desk.told, (Told{"selected 1", "selected 1 3"}));
    desk.table->selectRow(4);
    QApplication::processEvents();
    EXPECT_EQ(desk.told.size(), 3U);
    desk.rows = 3; // the selected row goes, and nobody is told
    desk.table->reloadData();
    QApplication::processEvents();
    EXPECT_FALSE(view->selectionModel()->hasSelection());
    EXPECT_EQ(desk.told.size(), 3U);
    click(2, Qt::NoModifier);
    desk.table->reloadData();
    QApplication::processEvents();
    EXPECT_TRUE(view->selectionModel()->isRowSelected(2));
    EXPECT_EQ(desk.told.back(), "selected 2");
}

TEST_F(Window, ASheetKeepsTheUserFromTheWindowUntilItIsAnswered) {
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
            EXPECT_TRUE(box->text().contains("About &lt;b&gt;")); // a name that looks like markup stays one
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
    EXPECT_FALSE(widget<QLabel>("inside")->isVisible());
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

TEST_F(Window, TabsPickThePageAndFollowTheProgram) {
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
    EXPECT_EQ(frontend->run([] { NSApp().finishLaunching(); }), 0);
    EXPECT_TRUE(NSApp().isTerminated());
    EXPECT_EQ(desk.told, (Told{"launched", "will terminate"}));
    EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty());
}

class Pictures : public Window {
  protected:
    Pictures() : Window(QtFrontend::Manner::Silent) {}
};

TEST_F(Pictures, EveryPageSheetAndPanelIsWrittenUnderItsName) {
    desk.rows = 3;
    desk.table->reloadData();
    std::string error;
    const auto folder = host.root() / "pictures";
    ASSERT_TRUE(frontend->takeSnapshots(folder.string(), error)) << error;
    for (const char* name : {"first", "first-drawer", "second", "sheet", "panel"}) {
        const QImage image(QString::fromStdString((folder / (std::string(name) + ".png")).string()));
        EXPECT_GT(image.width(), 50) << name;
    }
    EXPECT_TRUE(NSRunAlertPanel("Unasked", "?", "No", "Yes", std::nullopt) == NSAlertDefaultReturn);
}

TEST_F(Pictures, AFolderThatCannotBeMadeIsNamed) {
    host.write("file", "");
    std::string error;
    EXPECT_FALSE(frontend->takeSnapshots((host.root() / "file" / "pictures").string(), error));
    EXPECT_NE(error.find("file/pictures"), std::string::npos);
}

} // namespace
