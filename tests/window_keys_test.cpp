// The window with the keyboard alone.

#include "support/EveryWindowFixture.h"

#include <QCheckBox>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

namespace {

class Keys : public EveryWindow {};

TEST(Mnemonics, AreTheTextsOwnLettersEachOnceAndAsManyAsThereCanBe) {
    struct Case {
        std::vector<frontend::Titled> texts;
        QString taken;
        QStringList titles;
        QString shared = {};
    };

    for (const Case& each :
         {Case{{{"Save", ""}, {"Save As", ""}, {"Undo", ""}}, "", {"&Save", "Save &As", "&Undo"}},
          // A later text takes a letter from an earlier one; none is left for the last one.
          Case{{{"AB", ""}, {"A", ""}, {"B A", ""}}, "", {"A&B", "&A", "B A"}},
          Case{{{"Save", ""}}, "SA", {"Sa&ve"}}, Case{{{"R&D", ""}, {"Q & A", ""}}, "", {"&R&&D", "&Q && A"}},
          Case{{{"Ändern", ""}, {"Öffnen…", ""}}, "", {"Ä&ndern", "Ö&ffnen…"}},
          // A letter that many keyboards lack is the last choice, one that hides its line a late one.
          Case{{{"AÄ", ""}, {"A", ""}, {"Sß", ""}, {"SL", ""}}, "L", {"A&Ä", "&A", "S&ß", "&SL"}},
          Case{{{"Ab", ""}, {"Aö", ""}}, "", {"A&b", "&Aö"}}, Case{{{"Apt", ""}}, "A", {"Ap&t"}},
          Case{{{"Файл", ""}, {"Сеть", ""}}, "", {"&Файл", "&Сеть"}},
          Case{{{"名前:", "shareName"}, {"開く…", "open"}, {"AFP サーバ", ""}, {"Share", ""}},
               "",
               {"名前(&S):", "開く(&O)…", "AFP サーバ(&A)", "S&hare"}},
          // A letter that is used elsewhere is only for a text without any other.
          Case{{{"No", ""}, {"On", ""}}, "", {"N&o", "O&n"}, "N"},
          Case{{{"ページ", "pageMenu"}, {"ページ", ""}}, "A", {"ページ(&P)", "ページ(&B)"}}}) {
        QSet<QChar> taken(each.taken.begin(), each.taken.end());
        const QStringList titles =
            frontend::titlesWithMnemonics(each.texts, taken, {each.shared.begin(), each.shared.end()});
        EXPECT_EQ(titles, each.titles) << titles.join('|').toStdString();
        for (qsizetype text = 0; text < titles.size(); ++text) {
            EXPECT_EQ(frontend::plainTitle(titles[text]), each.texts[static_cast<std::size_t>(text)].text);
        }
    }
}

TEST_F(Keys, EachPageDrawerDialogAndMenuGivesEverythingItsOwnLetter) {
    addShare("R&D", host.root().string());
    addUser("alice", "501");
    openAll();
    clickRow("normalTableView", 0);
    settle();
    EXPECT_EQ(widget<QLabel>("selectedShareName").text(), "R&D"); // it has no mnemonic
    int withoutLetter = 0;
    const auto check = [&](const QStringList& titles, QSet<QChar> used, const std::string& where) {
        QStringList without;
        for (const QString& each : titles) {
            const QKeySequence letter = QKeySequence::mnemonic(each);
            const QChar key = letter.isEmpty() ? QChar() : QChar(letter[0].key());
            EXPECT_FALSE(used.contains(key)) << where << ": " << each.toStdString();
            key.isNull() ? without.append(each) : static_cast<void>(used.insert(key));
        }
        for (const QString& each : without) {
            for (const QChar letter : frontend::plainTitle(each)) {
                EXPECT_TRUE(!letter.isLetterOrNumber() || used.contains(letter.toUpper()))
                    << where << ": " << each.toStdString() << " could have " << QString(letter).toStdString();
            }
        }
        withoutLetter += static_cast<int>(without.size());
        return used;
    };
    const auto titlesOf = [](const QList<QAction*>& actions) {
        QStringList titles;
        for (const QAction* each : actions) {
            titles += each->isSeparator() ? QStringList() : QStringList(each->text());
        }
        return titles;
    };
    forEveryWindow([&](QWidget& shown, const std::string& where) {
        QStringList titles;
        QStringList ofDrawer;
        const auto add = [&](const QWidget& each, const QString& title) {
            const auto* drawer = shown.findChild<QWidget*>("drawer");
            const bool isInDrawer = drawer != nullptr && drawer->isAncestorOf(&each);
            (isInDrawer ? ofDrawer : titles) += title;
        };
        for (auto* each : shown.findChildren<QAbstractButton*>()) {
            const bool isOverTable = each->parentWidget()->objectName().endsWith("Empty");
            // The first does the same as a button below the table, and the second has its own keys.
            const bool needsNone = isOverTable || (each->text() == frontend::plainTitle(each->text()) &&
                                                   frontend::hasKeys(*each));
            if (each->isVisible() && !each->text().isEmpty() && !needsNone) {
                add(*each, each->text());
            }
        }
        for (auto* each : shown.findChildren<QLabel*>()) {
            if (each->isVisible() && each->buddy() != nullptr) {
                add(*each, each->text());
            }
        }
        const auto* main = qobject_cast<QMainWindow*>(&shown);
        const QSet<QChar> menus = main == nullptr
                                      ? QSet<QChar>()
                                      : check(titlesOf(main->menuBar()->actions()), {}, where + ", menus");
        check(titles, menus, where);
        check(ofDrawer, menus, where + ", drawer");
    });
    EXPECT_EQ(withoutLetter, 0);
    for (auto* menu : window().findChildren<QMenu*>()) {
        check(titlesOf(menu->actions()), {}, menu->title().toStdString());
    }
}

TEST_F(Keys, ALetterOfThePageAndTheEditorMeansWhatIsNearerToTheCursor) {
    addShare("Docs", host.root().string());
    openAll();
    clickRow("normalTableView", 0);
    clickTitled("Edit Share");
    settle();
    const auto& drawer = widget<QWidget>("drawer");
    const auto hasLetter = [](const QString& title, const QString& other) {
        return QKeySequence::mnemonic(title) == QKeySequence::mnemonic(other);
    };
    int shared = 0;
    for (auto* label : drawer.findChildren<QLabel*>()) {
        for (auto* button : window().findChildren<QAbstractButton*>()) {
            if (label->buddy() == nullptr || !button->isVisible() || drawer.isAncestorOf(button) ||
                button->objectName() == "deleteButton" || // a question would wait for an answer
                QKeySequence::mnemonic(button->text()).isEmpty() ||
                !hasLetter(label->text(), button->text())) {
                continue;
            }
            ++shared;
            clickRow("normalTableView", 0); // "New Share" leaves nothing to edit
            const auto key = static_cast<Qt::Key>(QKeySequence::mnemonic(button->text())[0].key());
            drawer.findChild<QWidget*>("createNewShare")->setFocus();
            press(key, Qt::AltModifier);
            EXPECT_EQ(QApplication::focusWidget(), label->buddy()) << label->text().toStdString();
            clickRow("normalTableView", 0); // some buttons need a row
            int clicks = 0;
            QObject::connect(button, &QAbstractButton::clicked, &window(), [&clicks] { ++clicks; });
            press(key, Qt::AltModifier);
            EXPECT_TRUE(QTest::qWaitFor([&clicks] { return clicks == 1; })) << button->text().toStdString();
            button->disconnect(&window());
        }
    }
    EXPECT_GT(shared, 0);
}

TEST_F(Keys, ALetterStaysWithItsButtonWhenAnotherTitleChanges) {
    addUser("alice", "501");
    openAll();
    showPage(1);
    const auto others = [this] {
        QStringList titles;
        for (const auto* each : window().findChildren<QAbstractButton*>()) {
            const bool stays = each->isVisible() && each->objectName() != "addNewUserButton";
            titles += stays ? QStringList(each->text()) : QStringList();
        }
        return titles;
    };
    settle();
    const QStringList before = others();
    clickRow("userTableView", 0);
    settle();
    EXPECT_EQ(others(), before) << others().join('|').toStdString();
}

TEST_F(Keys, NoKeyOfTheWindowHasTwoMeanings) {
    openAll();
    std::map<QString, QString> meanings;
    for (auto* each : window().findChildren<QAction*>()) {
        for (const QKeySequence& key : each->shortcuts()) {
            EXPECT_TRUE(meanings.emplace(key.toString(), each->text()).second)
                << key.toString().toStdString() << ": " << each->text().toStdString();
        }
    }
    for (const auto& [key, title] : {std::pair("Ctrl+N", "New Share"),
                                     {"Ctrl+F", "Filter"},
                                     {"F5", "Refresh"},
                                     {"F1", "Brindle Guide"},
                                     {"Ctrl+Z", "Undo"},
                                     {"Ctrl+PgDown", "Next Page"}}) {
        EXPECT_EQ(frontend::plainTitle(meanings[key]), title) << key;
    }
}

TEST_F(Keys, DoOnEachPageWhatThePageIsFor) {
    openAll();
    EXPECT_EQ(focused(), "normalTableView"); // the starting point
    for (const char* field : {"shareName", "fullName", "groupName"}) {
        press(Qt::Key_N, Qt::ControlModifier);
        EXPECT_EQ(focused(), field);
        press(Qt::Key_PageDown, Qt::ControlModifier);
    }
    press(Qt::Key_Tab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(focused(), "groupTableView");
    press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(focused(), "groupTableViewFilter");
    press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(focused(), "groupUsersTableViewFilter");
    addGroup("staff", "120");
    press(Qt::Key_F5);
    EXPECT_EQ(columnOf("groupTableView", "Group"), std::vector<std::string>{"staff"});
    QTest::keyClick(&window(), Qt::Key_Alt, Qt::AltModifier);
    EXPECT_NE(window().menuBar()->activeAction(), nullptr);
    QTest::keyClick(window().menuBar(), Qt::Key_Escape);
    press(Qt::Key_F10);
    EXPECT_EQ(QApplication::activePopupWidget(), window().menuBar()->actions().constFirst()->menu());
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
}

TEST_F(Keys, TakeBackTheLastChangeAndInAFieldWhatWasTyped) {
    addShare("Docs", "/shares/docs");
    openAll();
    clickRow("normalTableView", 0);
    answer({"Yes"});
    press(Qt::Key_Delete);
    ASSERT_EQ(columnOf("normalTableView", "ShareName"), std::vector<std::string>{});
    press(Qt::Key_E, Qt::ControlModifier);
    EXPECT_EQ(focused(), "shareName");
    QKeyEvent closing(QEvent::ShortcutOverride, Qt::Key_E, Qt::ControlModifier);
    closing.accept(); // as a field does on desktops where this key is its own
    QLineEdit field;
    QApplication::sendEvent(&field, &closing);
    EXPECT_FALSE(closing.isAccepted()) << "the field keeps the key to itself";
    typeInto("shareName", "abc");
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_NE(text("shareName"), "abc");
    EXPECT_EQ(columnOf("normalTableView", "ShareName"), std::vector<std::string>{});
    press(Qt::Key_E, Qt::ControlModifier);
    EXPECT_EQ(focused(), "normalTableView"); // the editor has closed
    answer({"Yes"});
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(columnOf("normalTableView", "ShareName"), std::vector<std::string>{"Docs"});
}

TEST_F(Keys, TabFollowsTheReadingOrder) {
    addShare("Docs", host.root().string());
    addUser("alice", "501");
    openAll();
    clickRow("normalTableView", 0);
    press(Qt::Key_Return);
    std::vector<std::string> met;
    for (int step = 0; step < 27; ++step) {
        met.push_back(focused());
        press(Qt::Key_Tab);
    }
    const std::vector<std::string> read = {"shareName",
                                           "directory",
                                           "Choose…",
                                           "sharingAFS",
                                           "sharingSMB",
                                           "Guests may use the SMB share",
                                           "Use the privileges of the enclosing folder",
                                           "owner",
                                           "ownerPrivs",
                                           "group",
                                           "groupPrivs",
                                           "everyonePrivs",
                                           "List system users and groups",
                                           "Revert",
                                           "Close",
                                           "Update Share",
                                           "QTabBar",
                                           "normalTableViewFilter",
                                           "normalTableView",
                                           "New Share",
                                           "Edit Share",
                                           "Delete Share…",
                                           "Refresh",
                                           "lockButton",
                                           "shareName"};
    EXPECT_TRUE(std::ranges::equal(std::span(met).first(read.size()), read)) << testing::PrintToString(met);
    showPage(1);
    clickRow("userTableView", 0);
    click("changePasswordButton");
    EXPECT_TRUE(QTest::qWaitFor([] { return focused() == "passwordSecureText1"; })) << focused();
}

} // namespace
