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

/// Uses the application's own window as a user does, on Qt's offscreen platform. Titles are given as they are
/// read, without mnemonics.
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
            if (frontend::plainTitle(each->text()) == title && each->isVisible()) {
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

    /// Uses the menu item whose title begins with `title`.
    void useMenu(const QString& title) {
        for (auto* action : widget<QWidget>("mainWindow").findChildren<QAction*>()) {
            if (frontend::plainTitle(action->text()).startsWith(title)) {
                action->trigger();
                return;
            }
        }
        FAIL() << "no menu item " << title.toStdString();
    }

    /// Answers the dialogs that open with the buttons of these titles, in order. `asked` keeps the dialogs'
    /// titles.
    void answer(const QStringList& buttons) {
        answers = buttons;
        asked.clear();
        said.clear();
        finger.disconnect(); // one dialog is answered at a time
        finger.callOnTimeout(&finger, [this] { pressAnswer(); });
        finger.start(5);
    }

    QStringList asked;     ///< the titles of the dialogs
    QStringList answers;   ///< the answers that are not used yet
    QString lastText;      ///< the whole text of the last dialog
    QStringList said;      ///< the whole text of each dialog
    QStringList passwords; ///< the passwords to type into the dialogs that ask for one, in order

  private:
    void pressAnswer() {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr || answers.isEmpty()) {
            return;
        }
        for (auto* button : dialog->findChildren<QAbstractButton*>()) {
            if (frontend::plainTitle(button->text()) == answers.front() && button->isVisible()) {
                asked.append(dialog->windowTitle());
                typePassword(*dialog);
                lastText.clear();
                for (auto* label : dialog->findChildren<QLabel*>()) {
                    lastText += label->text() + '\n';
                }
                said.append(lastText);
                answers.removeFirst();
                // Not from within this timer: it does not fire while it is handled, and the button may open
                // the next dialog.
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
