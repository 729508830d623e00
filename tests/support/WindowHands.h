#pragma once

#include "frontends/qt/Mnemonics.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTableView>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

/// A user's hands on the application's own window, on Qt's offscreen platform. Titles are meant as they are
/// read, without their letters.
class WindowHands {
  protected:
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
            if (plainTitle(each->text()) == title && each->isVisible()) {
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

    void clickRow(const std::string& table, int row) {
        auto& view = widget<QTableView>(table);
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {},
                          view.visualRect(view.model()->index(row, 0)).center());
    }

    /// Uses the menu item whose title begins so.
    void useMenu(const QString& title) {
        for (auto* action : widget<QWidget>("mainWindow").findChildren<QAction*>()) {
            if (plainTitle(action->text()).startsWith(title)) {
                action->trigger();
                return;
            }
        }
        FAIL() << "no menu item " << title.toStdString();
    }

    /// The dialogs that come up are answered by the buttons of these titles, in order; `asked` keeps what
    /// they said.
    void answer(const QStringList& buttons) {
        answers = buttons;
        asked.clear();
        said.clear();
        finger.disconnect(); // it has one hand only
        finger.callOnTimeout(&finger, [this] { pressAnswer(); });
        finger.start(5);
    }

    QStringList asked;     ///< the titles of the dialogs
    QStringList answers;   ///< those that are still waiting
    QString lastText;      ///< all that the last dialog said
    QStringList said;      ///< all that each of them said
    QStringList passwords; ///< typed into the dialogs that ask for one, in order

  private:
    void pressAnswer() {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr || answers.isEmpty()) {
            return;
        }
        for (auto* button : dialog->findChildren<QAbstractButton*>()) {
            if (plainTitle(button->text()) == answers.front() && button->isVisible()) {
                asked.append(dialog->windowTitle());
                typePassword(*dialog);
                lastText.clear();
                for (auto* label : dialog->findChildren<QLabel*>()) {
                    lastText += label->text() + '\n';
                }
                said.append(lastText);
                answers.removeFirst();
                // Not from here: while a timer is served it does not fire, and the button may bring up the
                // next.
                finger.stop();
                QTimer::singleShot(0, button, [this, button] {
                    finger.start();
                    QTest::mouseClick(button, Qt::LeftButton);
                });
                return;
            }
        }
    }

    void typePassword(const QDialog& dialog) {
        auto* field = dialog.findChild<QLineEdit*>();
        if (field != nullptr && field->echoMode() == QLineEdit::Password && !passwords.isEmpty()) {
            QTest::keyClicks(field, passwords.takeFirst());
        }
    }

    QTimer finger;
};
