// The menu "Check": who may use what, what is wrong, and who is connected.

#include "frontends/qt/AccessDialog.h"
#include "frontends/qt/FindingsDialog.h"
#include "frontends/qt/SessionsDialog.h"
#include "support/HistoryWindowFixture.h"

#include <QComboBox>
#include <QHeaderView>
#include <QTreeWidget>

namespace {

using accesscheck::Answer;
using review::Disconnection;

class WindowInquiriesTest : public WindowWithHistory {
  protected:
    /// Opens the dialog of a menu item, calls `see` with it, and closes it.
    void look(const QString& title, const std::function<void(QDialog&)>& see) {
        QTimer::singleShot(50, &widget<QWidget>("mainWindow"), [this, see] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            see(*dialog);
            answer({"Close"});
        });
        useMenu(title);
    }

    static QStringList column(const QTreeWidget& list, int column) {
        QStringList texts;
        for (int row = 0; row < list.topLevelItemCount(); ++row) {
            texts.append(list.topLevelItem(row)->text(column));
        }
        return texts;
    }
};

} // namespace

TEST_F(WindowInquiriesTest, AShareWhoseFolderIsGoneIsMarkedAndListedWithItsRemedy) {
    addShare("Docs", host.root() / "docs");
    addShare("Gone", "/no/such/folder");
    std::filesystem::create_directories(host.root() / "docs");
    host.write("etc/smb.conf",
               "[Docs]\npath = " + (host.root() / "docs").string() + "\n[Gone]\npath = /no/such/folder\n");
    openWithDoctor();
    auto* model = widget<QTableView>("normalTableView").model();
    EXPECT_TRUE(model->index(0, 0).data(Qt::DecorationRole).isNull());
    EXPECT_FALSE(model->index(1, 0).data(Qt::DecorationRole).isNull());
    EXPECT_TRUE(model->index(1, 0).data(Qt::ToolTipRole).toString().contains("/no/such/folder"));
    int reads = 0;
    host.onReport = [&reads] { ++reads; };
    QEvent activation(QEvent::WindowActivate); // coming back to the window must not wait for anything
    QApplication::sendEvent(&widget<QWidget>("mainWindow"), &activation);
    QTest::qWait(20);
    EXPECT_EQ(reads, 0);
    host.onReport = nullptr;
    look("Check This Computer", [this](QDialog&) {
        EXPECT_TRUE(column(widget<QTreeWidget>("findingsList"), 1).contains("Share \"Gone\""));
    });
    clickRow("normalTableView", 1);
    look("Check Access", [this](QDialog&) {
        EXPECT_TRUE(widget<QComboBox>("accessSubject").currentText().contains("\"Gone\""));
        EXPECT_NE(widget<QLabel>("accessReason").text(), "");
    });
}

TEST_F(WindowInquiriesTest, AccessIsShownForAShareAndForAUserWithTheReasonOfTheRow) {
    openWithDoctor();
    int begun = 0;
    frontend::AccessDialog dialog(
        {{"Docs", "Music"},
         {"ann", "bob"},
         [&begun] { ++begun; },
         [](const std::string& share, const std::optional<std::string>& user) {
             Answer answer{share, user, {true, true, true, false, false, false}, std::nullopt, {}};
             if (user == "ann") {
                 answer.may = {true, true, true, true, true, true};
             } else {
                 answer.reason = {"no-write", "may not write to " + share, "/srv", "ask ann"};
             }
             return answer;
         }},
        "Music", std::nullopt, nullptr);
    auto& list = *dialog.findChild<QTreeWidget*>("accessList");
    auto& reason = *dialog.findChild<QLabel*>("accessReason");
    auto& subject = *dialog.findChild<QComboBox*>("accessSubject");
    EXPECT_EQ(column(list, 0), QStringList({"Guest", "ann", "bob"}));
    EXPECT_EQ(column(list, 4), QStringList({"–", "✓", "–"}));
    list.setCurrentItem(list.topLevelItem(2));
    EXPECT_EQ(reason.text(), "may not write to Music (/srv)\nWhat would help: ask ann");
    list.setCurrentItem(list.topLevelItem(1));
    EXPECT_EQ(reason.text(), "Everything is allowed.");
    subject.setCurrentIndex(subject.count() - 1);
    EXPECT_EQ(column(list, 0), QStringList({"Docs", "Music"}));
    EXPECT_EQ(column(list, 7), QStringList({"may not write to Docs", "may not write to Music"}));
    EXPECT_EQ(begun, 2) << "everything is read again for each list";
    EXPECT_EQ(frontend::AccessDialog({{"Docs"},
                                      {"ann"},
                                      [] {},
                                      [](const auto& share, const auto& user) {
                                          return Answer{share, user, {}, std::nullopt, {}};
                                      }},
                                     std::nullopt, "ann", nullptr)
                  .findChild<QComboBox*>("accessSubject")
                  ->currentText(),
              "What \"ann\" may do");
}

TEST_F(WindowInquiriesTest, FindingsAreCountedAndCanBeReadWhole) {
    using accesscheck::Finding;
    openWithDoctor();
    const Finding problem{Finding::Level::Problem, "bad", "A problem.", "/srv", ""};
    Finding note{Finding::Level::Notice, "odd", "Nothing bad:", "/srv", ""};
    for (int word = 0; word < 30; ++word) {
        note.text += " long";
    }

    struct Case {
        std::vector<Finding> findings;
        const char* summary;
    };

    for (const Case& each :
         {Case{{}, "No problem was found."}, Case{{problem}, "One problem was found."},
          Case{{note}, "No problems; one note."}, Case{{note, problem, note}, "One problem; 2 notes."}}) {
        frontend::FindingsDialog dialog(
            [&each] {
                return accesscheck::Examination{each.findings, {}};
            },
            nullptr);
        EXPECT_EQ(dialog.findChild<QLabel*>("findingsSummary")->text(), each.summary);
        dialog.show();
        QApplication::processEvents();
        const auto& list = *dialog.findChild<QTreeWidget*>("findingsList");
        EXPECT_EQ(list.header()->length(), list.viewport()->width());
        if (each.findings.size() == 3) {
            const auto height = [&list](int row) {
                return list.visualItemRect(list.topLevelItem(row)).height();
            };
            EXPECT_GT(height(1), height(0)) << "the long text is wrapped";
        }
    }
}

TEST_F(WindowInquiriesTest, ANarrowListOfRightsKeepsItsReasons) {
    openWithDoctor();
    frontend::AccessDialog dialog({{"Docs"},
                                   {"ann"},
                                   [] {},
                                   [](const auto& share, const auto& user) {
                                       return Answer{share, user, {}, std::nullopt, {}};
                                   }},
                                  "Docs", std::nullopt, nullptr);
    dialog.resize(400, 300);
    dialog.show();
    QApplication::processEvents();
    const auto& list = *dialog.findChild<QTreeWidget*>("accessList");
    EXPECT_GE(list.columnWidth(7), 200);
    dialog.resize(900, 300);
    QApplication::processEvents();
    EXPECT_EQ(list.header()->length(), list.viewport()->width());
}

TEST_F(WindowInquiriesTest, TheSelectionIsDisconnectedAfterConfirmation) {
    openWithDoctor();
    std::vector<std::string> done;
    platform::Session session;
    session.user = "ann";
    session.address = "192.168.1.7";
    session.shares = {{"Docs", 0}};
    session.files = {{"/srv/docs/letter", 0, true}};
    frontend::SessionsDialog dialog({[&] { return std::vector{session}; },
                                     [&done](Disconnection kind, const std::string& what) {
                                         done.push_back(
                                             (kind == Disconnection::Share ? "share " : "computer ") + what);
                                         return true;
                                     }},
                                    nullptr);
    dialog.show();
    auto& list = *dialog.findChild<QTreeWidget*>("sessionsList");
    auto& button = *dialog.findChild<QPushButton*>("disconnect");
    EXPECT_FALSE(button.isEnabled());
    const auto press = [&](QTreeWidgetItem* item, const char* answered) {
        list.setCurrentItem(item);
        answer({answered});
        QTest::mouseClick(&button, Qt::LeftButton);
    };
    press(list.topLevelItem(0)->child(0), "No");
    EXPECT_TRUE(done.empty());
    press(list.topLevelItem(0)->child(0), "Yes");
    press(list.topLevelItem(0), "Yes");
    EXPECT_EQ(done, std::vector<std::string>({"share Docs", "computer 192.168.1.7"}));
    list.setCurrentItem(list.topLevelItem(0)->child(1));
    EXPECT_FALSE(button.isEnabled()) << "a file cannot be disconnected";
}
