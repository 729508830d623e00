#pragma once

#include "frontends/qt/Binding.h"
#include "frontends/qt/Mnemonics.h"
#include "frontends/qt/QtFrontend.h"
#include "platform/appkit/Interface.h"
#include "platform/appkit/NSAlert.h"
#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSMatrix.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTabView.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSWindow.h"
#include "platform/appkit/ObjectClass.h"
#include "platform/foundation/Host.h"
#include "support/TestHost.h"
#include "ui/KWIntegerFormatter.h"

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
#include <QTextDocument>
#include <QTimer>
#include <QToolTip>
#include <QWindow>

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

/// A small interface with every kind of control.
inline constexpr const char* deskInterface = R"(<interface class="Desk">
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
    <drawer outlet="drawer" width="200"><column><label name="inside" text="Inside"/></column></drawer>
  </window>
  <sheet outlet="sheet" title="Sheet"><column>
    <secureField outlet="secret"/><button title="Done" action="endSheet:" key="return"/>
  </column></sheet>
  <panel outlet="panel" title="Panel" delegate="yes" width="200" height="100"><column><label text="Hello"/></column></panel>
</interface>)";

/// The class of the interface. It records what it is told.
struct Desk : platform::OutletOwner,
              NSApplicationDelegate,
              NSTableViewDataSource,
              NSTableViewDelegate,
              NSTabViewDelegate,
              NSTextFieldDelegate,
              NSWindowDelegate {
    NSTabView* tabs = outlet("tabs", tabs);
    NSTableView* table = outlet("table", table);
    NSTextField* number = outlet("number", number);
    NSButton* press = outlet("press", press);
    NSButton* check = outlet("check", check);
    NSPopUpButton* popUp = outlet("popUp", popUp);
    NSMatrix* matrix = outlet("matrix", matrix);
    NSDrawer* drawer = outlet("drawer", drawer);
    NSWindow* sheet = outlet("sheet", sheet);
    NSSecureTextField* secret = outlet("secret", secret);
    NSWindow* panel = outlet("panel", panel);
    int rows = 0;
    int cellsAsked = 0;
    std::string cell; ///< what each cell shows; if empty, its column and row
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
        return cell.empty() ? column.identifier + std::to_string(row) : cell;
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
    explicit Window(frontend::QtFrontend::Manner manner = frontend::QtFrontend::Manner::Interactive) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("QT_LOGGING_RULES", "default.warning=false"); // suppress the offscreen platform's warnings
        frontend = std::make_unique<frontend::QtFrontend>(argc, arguments, manner);
        host.host().setPresenter(frontend->presenter());
        auto description = platform::describeClass<Desk>("Desk");
        description.action("typed:", &Desk::typed).action("pressed:", &Desk::pressed);
        description.action("chosen:", &Desk::chosen).action("endSheet:", &Desk::endSheet);
        platform::registerClass(description.take());
        host.write("Desk.xml", deskInterface);
        interface = std::move(*platform::Interface::load((host.root() / "Desk.xml").string(), "Desk", &desk));
        desk.number->setFormatter(std::make_shared<KWIntegerFormatter>());
    }

    void TearDown() override { frontend.reset(); } // must be destroyed before the interface that it shows

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
    std::unique_ptr<frontend::QtFrontend> frontend;
};
