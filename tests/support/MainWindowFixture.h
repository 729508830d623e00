#pragma once

#include "frontends/qt/QtFrontend.h"
#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "support/AppFixture.h"
#include "support/WindowHands.h"

#include <QClipboard>
#include <QComboBox>
#include <QMessageBox>

/// The application's own window on Qt's offscreen platform, used with mouse and keys.
class MainWindow : public AppFixture, protected WindowHands {
  protected:
    explicit MainWindow(const TestHost::Options& options = {}) : AppFixture(options) {}

    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", qtPlatform);
        qputenv("QT_LOGGING_RULES", "default.warning=false");
        frontend = std::make_unique<frontend::QtFrontend>(argc, arguments,
                                                          frontend::QtFrontend::Manner::Interactive);
        host.host().setPresenter(frontend->presenter());
    }

    void TearDown() override { frontend.reset(); } // must be destroyed before the interface that it shows

    void open() {
        start();
        NSApp().mainWindow()->makeKeyAndOrderFront();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&widget<QWidget>("mainWindow")));
    }

    /// Puts the window on a screen of that size. Must come before SetUp.
    void useScreen(int width, int height) {
        const std::string size =
            "\"width\": " + std::to_string(width) + ", \"height\": " + std::to_string(height);
        host.write("screen.json", "{\"synchronousWindowSystemEvents\": false, \"windowFrameMargins\": true, "
                                  "\"screens\": [{\"name\": \"one\", \"x\": 0, \"y\": 0, \"logicalDpi\": 96, "
                                  "\"logicalBaseDpi\": 96, \"dpr\": 1, " +
                                      size + "}]}");
        qtPlatform =
            QByteArray::fromStdString("offscreen:configfile=" + (host.root() / "screen.json").string());
    }

    QByteArray qtPlatform = "offscreen";
    int argc = 1;
    char program[7] = "window";
    char* arguments[2] = {program, nullptr};
    std::unique_ptr<frontend::QtFrontend> frontend;
};
