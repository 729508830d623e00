#pragma once

#include "frontends/qt/Buttons.h"
#include "support/HistoryWindowFixture.h"

#include <QDialog>
#include <QMainWindow>

#include <functional>
#include <string>

/// The window with all that its menus open.
class EveryWindow : public WindowWithHistory {
  protected:
    void openAll() {
        openWithDoctor();
        frontend->useServer({"smb://127.0.0.1:4455/", "SMB server", false});
    }

    QMainWindow& window() { return widget<QMainWindow>("mainWindow"); }

    /// Handles events that are delayed until the waiting ones are done.
    static void settle() { QTest::qWait(1); }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        if (QApplication::focusWidget() == nullptr) { // a question has just closed
            window().activateWindow();
            ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
        }
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
        settle();
    }

    static std::string focused() {
        const QWidget* widget = QApplication::focusWidget();
        const auto* button = qobject_cast<const QAbstractButton*>(widget);
        return widget == nullptr ? "nothing"
               : button != nullptr && !button->text().isEmpty()
                   ? frontend::plainTitle(button->text()).toStdString()
               : !widget->objectName().isEmpty() ? widget->objectName().toStdString()
                                                 : widget->metaObject()->className();
    }

    /// Calls `look` with every window: each page with each of its settings' pages, the editor, the sheet, and
    /// each dialog and panel that the menus open.
    void forEveryWindow(const std::function<void(QWidget&, const std::string&)>& look) {
        const auto see = [&look](QWidget& shown, const std::string& where) {
            settle();
            look(shown, where);
        };
        for (int page = 0; page < 5; ++page) {
            showPage(page);
            see(window(), "page " + std::to_string(page));
            for (const char* menu : {"afsPropsPage", "smbPropsPage"}) {
                auto& pages = control<NSPopUpButton>(menu);
                for (int each = 0; page == (menu[0] == 'a' ? 3 : 4) && each < pages.numberOfItems(); ++each) {
                    pages.performSelect(each);
                    QApplication::processEvents();
                    see(window(), std::string(menu) + " " + std::to_string(each));
                }
            }
        }
        showPage(1);
        clickRow("userTableView", 0);
        click("changePasswordButton");
        see(widget<QWidget>("passwordWindow"), "passwordWindow");
        press(Qt::Key_Escape);
        EXPECT_FALSE(widget<QWidget>("passwordWindow").isVisible());
        showPage(0);
        clickTitled("New Share");
        see(window(), "editor");
        QTimer eye;
        eye.callOnTimeout([&] {
            if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                see(*dialog, dialog->objectName().toStdString());
                QTest::keyClick(dialog, Qt::Key_Escape);
                EXPECT_FALSE(dialog->isVisible()) << dialog->objectName().toStdString();
            }
        });
        eye.start(20);
        for (const char* item : {"What Would This Do?", "History…", "Check Access…", "Check This Computer…",
                                 "Who Is Connected…"}) {
            useMenu(item);
        }
        click("deleteButton"); // which asks
        useMenu("Activity…");
        see(widget<QWidget>("activity"), "activity");
        useMenu("About Brindle");
        see(widget<QWidget>("aboutWindow"), "aboutWindow");
    }
};
