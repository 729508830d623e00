// The lists as a user sorts, searches and uses them: the application's own rows stay what they are.

#include "frontends/qt/TableRows.h"
#include "platform/appkit/NSWindow.h"
#include "support/MainWindowFixture.h"

#include <QHeaderView>

#include <random>

namespace {

class Lists : public MainWindow {
  protected:
    void openWith(const std::vector<std::string>& shares) {
        for (const std::string& share : shares) {
            addShare(share, "/folders/" + share);
        }
        open();
    }

    QTableView& table() { return widget<QTableView>("normalTableView"); }

    QLineEdit& filter() { return widget<QLineEdit>("normalTableViewFilter"); }

    QStringList names() {
        QStringList shown;
        for (int place = 0; place < table().model()->rowCount(); ++place) {
            shown += table().model()->index(place, 0).data().toString();
        }
        return shown;
    }

    std::string selected() { return text("selectedShareName"); }
};

TEST(ATableRowsOrder, CountsNumbersByTheirValueAndPassesOverCaseAndAccents) {
    struct Case {
        std::vector<std::string> texts;
        std::vector<std::string> ordered;
    };

    const std::vector<Case> cases = {
        {{"share10", "share9", "Share2", "share"}, {"share", "Share2", "share9", "share10"}},
        {{"zoo", "Äpfel", "birne", "apfelmus", "Éclair"}, {"Äpfel", "apfelmus", "birne", "Éclair", "zoo"}},
        {{"7", "", "007", "70"}, {"", "7", "007", "70"}},
    };
    for (const Case& each : cases) {
        TableRows rows([&each](int row, int) { return each.texts[static_cast<std::size_t>(row)]; }, 1);
        rows.setLength(static_cast<int>(each.texts.size()));
        for (const bool isDescending : {false, true}) {
            rows.setOrder(0, isDescending);
            rows.arrange({});
            std::vector<std::string> ordered;
            for (int place = 0; place < rows.count(); ++place) {
                ordered.push_back(each.texts[static_cast<std::size_t>(rows.rowAt(place))]);
                EXPECT_EQ(rows.placeOf(rows.rowAt(place)), place);
            }
            if (!isDescending) {
                EXPECT_EQ(ordered, each.ordered);
            }
        }
    }
}

TEST_F(Lists, ASortedRowIsStillTheRowThatItsDeletionTakes) {
    openWith({"Music", "Docs", "Films"});
    auto* header = table().horizontalHeader();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                      QPoint(header->sectionViewportPosition(0) + 20, 5));
    ASSERT_EQ(names(), (QStringList{"Docs", "Films", "Music"}));
    clickRow("normalTableView", 1);
    EXPECT_EQ(selected(), "Films");
    EXPECT_EQ(control<NSTableView>("normalTableView").selectedRow(), 2);
    answer({"Yes"});
    QTest::keyClick(&table(), Qt::Key_Delete);
    EXPECT_EQ(names(), (QStringList{"Docs", "Music"}));
    EXPECT_EQ(columnOf("normalTableView", "ShareName"), (std::vector<std::string>{"Music", "Docs"}));
}

TEST_F(Lists, AFilterLeavesTheRowsThatHoldAllWordsAndNeverHidesTheSelectedOne) {
    openWith({"Music", "Docs", "Film Music", "Films"});
    clickRow("normalTableView", 1);
    QTest::keyClick(&table(), 'f', Qt::ControlModifier);
    ASSERT_TRUE(filter().hasFocus());
    QTest::keyClicks(&filter(), "MUS film");
    EXPECT_EQ(names(), (QStringList{"Docs", "Film Music"}));
    EXPECT_EQ(selected(), "Docs");
    clickRow("normalTableView", 1);
    EXPECT_EQ(selected(), "Film Music");
    filter().setFocus();
    QTest::keyClicks(&filter(), "x");
    EXPECT_EQ(names(), QStringList{"Film Music"});
    // What the program selects comes into view as well.
    control<NSTableView>("normalTableView").selectRow(3);
    QApplication::processEvents();
    EXPECT_TRUE(names().contains("Films"));
    QTest::keyClick(&filter(), Qt::Key_Escape);
    EXPECT_EQ(names().size(), 4);
    EXPECT_TRUE(table().hasFocus());
    EXPECT_TRUE(table().selectionModel()->isRowSelected(3));
}

TEST_F(Lists, TypingFindsARowReturnOpensItsEditorAndCopyTakesWhatIsShown) {
    openWith({"Music", "Docs", "Films", "Dogs"});
    table().setFocus();
    QTest::keyClicks(&table(), "dog");
    EXPECT_EQ(selected(), "Dogs");
    QTest::keyClick(&table(), 'c', Qt::ControlModifier);
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith("Dogs\t/folders/Dogs\t"))
        << QApplication::clipboard()->text().toStdString();
    QTest::keyClick(&table(), Qt::Key_Return);
    EXPECT_TRUE(widget<QLineEdit>("shareName").isVisible());
    EXPECT_TRUE(widget<QLineEdit>("shareName").hasFocus());
}

TEST_F(Lists, ColumnsComeBackAsTheyWereArranged) {
    const std::string key = "BrindleColumns.normalTableView";
    auto& defaults = NSUserDefaults::standardUserDefaults();
    defaults.setString("SMB\t0\tshown\t\nGone\t0\thidden\t\nShareName\t0\tshown\tdown\nAFS\t0\thidden\t",
                       key);
    openWith({"Docs", "Music"});
    auto* header = table().horizontalHeader();
    EXPECT_EQ(names(), (QStringList{"Music", "Docs"}));
    EXPECT_EQ(header->visualIndex(0), 1);
    EXPECT_EQ(header->hiddenSectionCount(), 5);
    header->moveSection(1, 0);
    header->setSortIndicator(-1, Qt::AscendingOrder);
    EXPECT_EQ(names(), (QStringList{"Docs", "Music"}));
    QTest::qWait(400); // it is written once the hand is still
    EXPECT_TRUE(defaults.stringForKey(key).value_or("").starts_with("ShareName\t0\tshown\t\nSMB\t"))
        << defaults.stringForKey(key).value_or("");
}

} // namespace
