#pragma once

#include "platform/appkit/Interface.h"
#include "platform/appkit/NSAlert.h"
#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSFormatter.h"
#include "platform/appkit/NSMatrix.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTabView.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSTextView.h"
#include "platform/appkit/NSWindow.h"
#include "platform/appkit/ObjectClass.h"
#include "platform/foundation/Host.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

using Names = std::vector<std::string>;

/// The class of an interface file and its tables' source; it records what it is told.
struct Recorder : platform::OutletOwner,
                  NSApplicationDelegate,
                  NSTableViewDataSource,
                  NSTableViewDelegate,
                  NSTabViewDelegate,
                  NSTextFieldDelegate,
                  NSWindowDelegate {
    NSTextField* name = outlet("name", name);
    NSButton* press = outlet("press", press);
    NSTableView* table = outlet("table", table);
    int rows = 0;
    Names told;
    Names* obituary = nullptr;

    ~Recorder() override {
        if (obituary != nullptr) { // the controls still exist
            obituary->push_back(name != nullptr ? name->stringValue() : "no field");
        }
    }

    void pressed(NSControl* sender) { told.push_back(sender == press ? "pressed" : "other sender"); }

    void applicationDidFinishLaunching() override { told.emplace_back("launched"); }

    bool applicationShouldTerminateAfterLastWindowClosed() override { return true; }

    void applicationWillTerminate() override { told.emplace_back("will terminate"); }

    int numberOfRowsInTableView(NSTableView*) override { return rows; }

    std::string tableViewObjectValueForTableColumn(NSTableView*, const NSTableColumn& column,
                                                   int row) override {
        return column.identifier + std::to_string(row);
    }

    void tableViewSelectionDidChange(NSTableView* changed) override {
        told.push_back("selected " + std::to_string(changed->selectedRow()));
    }

    void tabViewDidSelectTabViewItem(NSTabView*, int index) override {
        told.push_back("page " + std::to_string(index));
    }

    void controlDidFailToValidatePartialString(NSTextField* control, const std::string& partial,
                                               const std::string& error) override {
        told.push_back(control->stringValue() + "->" + partial + ": " + error);
    }

    void windowDidBecomeKey(NSWindow* window) override { told.push_back(window->title() + " key"); }

    void windowDidResignKey(NSWindow* window) override { told.push_back(window->title() + " not key"); }
};

/// Refuses a text with a "!".
struct NoShouting : NSFormatter {
    using NSFormatter::isPartialStringValid;

    bool isPartialStringValid(const std::string& partial, std::optional<std::string>&,
                              std::string& error) override {
        error = "too loud";
        return partial.find('!') == std::string::npos;
    }
};

class AppKit : public testing::Test {
  protected:
    AppKit() {
        platform::registerClass(platform::describeClass<Recorder>("Recorder")
                                    .maker([this] {
                                        auto made = std::make_shared<Recorder>();
                                        made->obituary = madeObituary;
                                        return made;
                                    })
                                    .action("press:", &Recorder::pressed)
                                    .take());
    }

    platform::Result<std::unique_ptr<platform::Interface>> load(const std::string& xml, Recorder* owner) {
        host.write("file.xml", xml);
        return platform::Interface::load((host.root() / "file.xml").string(), "Recorder", owner);
    }

    TestHost host;
    Names* madeObituary = nullptr; ///< for the objects that the class makes
};
