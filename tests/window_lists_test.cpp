// Sorting, searching and using the lists: the application's own rows do not change.

#include "frontends/qt/TableRows.h"
#include "platform/appkit/NSWindow.h"
#include "platform/foundation/Computer.h"
#include "review/Reviewer.h"
#include "support/MainWindowFixture.h"
#include "support/WindowFixture.h"

#include <QAccessible>
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QDesktopServices>
#include <QHeaderView>
#include <QListView>
#include <QMenu>
#include <QUrl>

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

TEST(ATableRowsOrder, ComparesNumbersByValueAndIgnoresCaseAndAccents) {
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
        frontend::TableRows rows([&each](int row, int) { return each.texts[static_cast<std::size_t>(row)]; },
                                 1);
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

TEST_F(Lists, DeletingASortedRowDeletesThatRow) {
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

TEST_F(Lists, AFilterShowsTheRowsWithAllWordsAndNeverHidesTheSelectedOne) {
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
    // A row that the program selects is shown, too.
    control<NSTableView>("normalTableView").selectRow(3);
    QApplication::processEvents();
    EXPECT_TRUE(names().contains("Films"));
    QTest::keyClick(&filter(), Qt::Key_Escape);
    EXPECT_EQ(names().size(), 4);
    EXPECT_TRUE(table().hasFocus());
    EXPECT_TRUE(table().selectionModel()->isRowSelected(3));
}

TEST_F(Lists, TypingFindsARowReturnOpensItsEditorAndCopyCopiesWhatIsShown) {
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

TEST_F(Lists, AColumnIsWideEnoughForItsTextsWhileOthersHaveWidthToSpare) {
    const std::string longest(20, 'w');
    addShare(longest, "/short");
    open();
    const QHeaderView& header = *table().horizontalHeader();
    EXPECT_GT(header.sectionSize(0), table().fontMetrics().horizontalAdvance(longest.c_str()));
    EXPECT_LE(header.length(), table().viewport()->width()) << "a column ends outside the view";
}

TEST_F(Lists, ColumnsAreRestoredAsTheyWereArranged) {
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
    header->setAttribute(Qt::WA_UnderMouse); // the widths are the window's own all the same
    widget<QWidget>("mainWindow").resize(1000, 600);
    QTest::qWait(400); // it is saved after the last change
    EXPECT_TRUE(defaults.stringForKey(key).value_or("").starts_with("ShareName\t0\tshown\t\nSMB\t"))
        << defaults.stringForKey(key).value_or("");
}

/// A menu with a hundred thousand people.
class LongMenu : public Window {
  protected:
    void fill() {
        desk.popUp->removeAllItems();
        for (int person = 0; person < people; ++person) {
            desk.popUp->addItemWithTitle("person" + std::to_string(person));
        }
        show();
        QApplication::processEvents();
    }

    QWidget& opened() {
        QTest::mouseClick(widget<QComboBox>("popUp"), Qt::LeftButton);
        EXPECT_TRUE(QTest::qWaitFor([] { return QApplication::activePopupWidget() != nullptr; }));
        return *QApplication::activePopupWidget();
    }

    static constexpr int people = 100000;
};

TEST_F(LongMenu, IsSearchedByAPartOfTheNameAndChangesOnlyByAChoice) {
    fill();
    const QWidget& menu = opened();
    auto* field = menu.findChild<QLineEdit*>();
    const auto* list = menu.findChild<QListView*>();
    ASSERT_TRUE(field != nullptr && list != nullptr && field->hasFocus());
    EXPECT_EQ(list->model()->rowCount(), people);
    auto* spoken = QAccessible::queryAccessibleInterface(widget<QComboBox>("popUp"));
    EXPECT_TRUE(spoken->state().expanded);
    EXPECT_EQ(spoken->child(0)->object(), &menu);
    QTest::keyClicks(field, "ON9999");
    EXPECT_EQ(list->model()->rowCount(), 11); // 9999 and 99990 to 99999
    QTest::keyClick(field, Qt::Key_Down);
    EXPECT_EQ(desk.told, Told{});
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_FALSE(spoken->state().expanded);
    EXPECT_EQ(desk.popUp->indexOfSelectedItem(), 0);

    field = opened().findChild<QLineEdit*>();
    QTest::keyClicks(field, "nobody");
    QTest::keyClick(field, Qt::Key_Return); // there is nothing to choose
    ASSERT_NE(QApplication::activePopupWidget(), nullptr);
    field->clear();
    QTest::keyClicks(field, "9999");
    QTest::keyClick(field, Qt::Key_Down);
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(desk.told, Told{"chose person19999"});
    EXPECT_EQ(widget<QComboBox>("popUp")->currentText(), "person19999");

    auto* shown = opened().findChild<QListView*>();
    QTest::mouseClick(shown->viewport(), Qt::LeftButton, {},
                      shown->visualRect(shown->currentIndex()).center());
    EXPECT_EQ(desk.told, (Told{"chose person19999", "chose person19999"})); // choosing it again counts
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

TEST_F(LongMenu, IsLookedAtAgainOnlyWhenItsItemsHaveChanged) {
    fill();
    int resets = 0;
    QObject::connect(widget<QComboBox>("popUp")->model(), &QAbstractItemModel::modelReset, [&] { ++resets; });
    desk.popUp->selectItemWithTitle("person77777");
    QApplication::processEvents();
    EXPECT_EQ(widget<QComboBox>("popUp")->currentText(), "person77777");
    EXPECT_EQ(resets, 0);
    desk.popUp->removeAllItems();
    desk.popUp->addItemWithTitle("person77777");
    QApplication::processEvents();
    EXPECT_EQ(resets, 1);
    EXPECT_EQ(widget<QComboBox>("popUp")->currentText(), "person77777");
}

/// A computer that names programs' accounts.
struct ServicesComputer : platform::Computer {
    [[nodiscard]] std::string whatIsMissing() const override { return {}; }

    [[nodiscard]] platform::ServerLine smbServer() const override { return {}; }

    [[nodiscard]] std::string afpServerLine() const override { return {}; }

    [[nodiscard]] std::string whyNoPublicFolder(const std::string& /*user*/) const override { return {}; }

    [[nodiscard]] platform::SystemAccounts systemAccounts() const override { return accounts; }

    platform::SystemAccounts accounts;
};

class SystemAccounts : public Lists {
  protected:
    void openOnComputer() {
        platform::Services services = host.host().services();
        services.computer = computer;
        inner.emplace(std::move(services));
        open();
        reviewer.emplace(*interface);
        frontend->useReviewer(*reviewer);
    }

    void TearDown() override {
        MainWindow::TearDown();
        reviewer.reset();
        interface.reset();
        inner.reset();
    }

    QStringList names(const std::string& table, int column = 0) {
        QApplication::processEvents();
        const auto* model = widget<QTableView>(table).model();
        QStringList shown;
        for (int place = 0; place < model->rowCount(); ++place) {
            shown += model->index(place, column).data().toString();
        }
        return shown;
    }

    std::shared_ptr<ServicesComputer> computer = std::make_shared<ServicesComputer>();
    std::optional<platform::Host> inner;
    std::optional<review::Reviewer> reviewer;
};

TEST_F(SystemAccounts, AreHiddenUntilTheyAreAskedFor) {
    addUser("games", "105");
    addUser("alice", "1001");
    addGroup("mail", "108");
    addGroup("crew", "1600");
    computer->accounts = {{"games"}, {"mail"}};
    openOnComputer();
    showPage(1);
    EXPECT_EQ(names("userTableView"), QStringList{"alice"});
    clickRow("userTableView", 0);
    EXPECT_EQ(control<NSTableView>("userTableView").selectedRow(), 1); // row numbers of the list
    showPage(2);
    EXPECT_EQ(names("groupTableView", 1), QStringList{"crew"});
    EXPECT_EQ(names("groupUsersTableView"), QStringList{"alice"});
    // The page's own box shows them as well.
    QTest::mouseClick(&widget<QCheckBox>("showSystemUsersGroups3"), Qt::LeftButton, {}, QPoint(8, 8));
    EXPECT_TRUE(names("groupTableView", 1).contains("mail"));
    useMenu("Show System Accounts");
    showPage(1);
    EXPECT_EQ(names("userTableView"), (QStringList{"games", "alice"}));
    EXPECT_EQ(NSUserDefaults::standardUserDefaults().integerForKey("BrindleShowSystemAccounts"), 1);
    clickRow("userTableView", 0);
    useMenu("Show System Accounts");
    EXPECT_EQ(names("userTableView"), (QStringList{"games", "alice"})); // the selected row stays visible
    clickRow("userTableView", 1);
    computer->accounts.users.insert("alice");
    clickTitled("Refresh");
    EXPECT_EQ(names("userTableView"), QStringList{"alice"});
}

/// Chooses entries of a row's menu.
class RowMenu : public SystemAccounts {
  protected:
    /// Chooses the entry. Returns whether it was enabled.
    bool pick(int row, const QString& entry) {
        bool isPicked = false;
        QTimer::singleShot(0, [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            ASSERT_NE(menu, nullptr);
            for (QAction* action : menu->actions()) {
                if (action->text().remove('&') == entry && action->isEnabled()) {
                    menu->setActiveAction(action);
                    QTest::keyClick(menu, Qt::Key_Return);
                    isPicked = true;
                    return;
                }
            }
            menu->close();
        });
        const QPoint place = table().visualRect(table().model()->index(row, 0)).center();
        clickRow("normalTableView", row);
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, table().viewport()->mapToGlobal(place));
        QApplication::sendEvent(table().viewport(), &event);
        return isPicked;
    }
};

} // namespace

/// Records addresses that would be opened on the desktop.
class Desktop : public QObject {
    Q_OBJECT

  public:
    Desktop() { QDesktopServices::setUrlHandler("file", this, "open"); }

    ~Desktop() override { QDesktopServices::unsetUrlHandler("file"); }

    Q_INVOKABLE void open(const QUrl& url) { opened.append(url.toLocalFile()); }

    QStringList opened;
};

namespace {

TEST_F(RowMenu, OpensTheFolderAndCopiesTheAddressForOthers) {
    const Desktop desktop;
    const std::string folder = (host.root() / "my docs").string();
    std::filesystem::create_directory(folder);
    addShare("My Docs", folder);
    addShare("Old Mac", "/gone");
    addShare("Kept", "/gone", "0");
    host.write("etc/smb.conf", "[My Docs]\n\tpath = " + folder + "\n");
    openOnComputer();
    EXPECT_FALSE(pick(0, "Copy Address")); // nothing serves it
    frontend->useServer({"smb://desk:4455/", "", false});
    EXPECT_TRUE(pick(0, "Copy Address"));
    EXPECT_EQ(QApplication::clipboard()->text(), "smb://desk:4455/My%20Docs");
    EXPECT_TRUE(pick(1, "Copy Address"));
    EXPECT_EQ(QApplication::clipboard()->text(), "afp://desk/Old%20Mac");
    EXPECT_FALSE(pick(2, "Copy Address"));
    EXPECT_TRUE(pick(0, "Open Folder"));
    EXPECT_FALSE(pick(1, "Open Folder"));
    EXPECT_EQ(desktop.opened, QStringList{QString::fromStdString(folder)});
}

} // namespace

// Static analysis runs before this file is generated.
#if __has_include("window_lists_test.moc")
#include "window_lists_test.moc"
#endif
