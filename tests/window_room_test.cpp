// The window's size on small and large screens, its place at the next start, and its colours.

#include "frontends/qt/DrawnIcons.h"
#include "frontends/qt/Inks.h"
#include "frontends/qt/ReviewDialog.h"
#include "frontends/qt/ScreenRoom.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSFileManager.h"
#include "review/Reviewer.h"
#include "support/MainWindowFixture.h"

#include <QCheckBox>
#include <QStyle>
#include <QTabBar>

#include <algorithm>

namespace {

using frontend::contrast;
using frontend::leastContrast;
using frontend::leastEdgeContrast;
using frontend::Mark;

class Room : public MainWindow {
  protected:
    void SetUp() override {} // tests call openOn instead

    void openOn(int width, int height) {
        useScreen(width, height);
        MainWindow::SetUp();
        open();
    }

    QWidget& window() { return widget<QWidget>("mainWindow"); }

    /// True when the whole widget is drawn, so that the mouse can reach it.
    static bool isInSight(const QWidget& widget) {
        return widget.isVisible() && widget.visibleRegion().boundingRect() == widget.rect();
    }

    QWidget& drawer() { return widget<QWidget>("drawer"); }

    QRect within(const QWidget& inner) { return {inner.mapTo(&window(), QPoint()), inner.size()}; }
};

TEST_F(Room, TheLockShowsItsImageFromTheCopyThatEveryImageHas) {
    openOn(1280, 800);
    EXPECT_FALSE(widget<QAbstractButton>("lockButton").icon().isNull());
    for (const std::string name : {"lock", "unlock"}) {
        const std::string file = NSBundle::mainBundle().resourcePath() + "/" + name;
        const QImage copy =
            QImage(QString::fromStdString(file + ".png")).convertToFormat(QImage::Format_RGBA8888);
        const std::string_view pixels(reinterpret_cast<const char*>(copy.constBits()),
                                      static_cast<std::size_t>(copy.sizeInBytes()));
        ASSERT_FALSE(pixels.empty()) << name;
        const auto image = contentsOfFile(file + ".tiff");
        ASSERT_TRUE(image.isOk()) << name;
        EXPECT_NE(image->find(pixels), std::string::npos) << name;
    }
}

TEST_F(Room, OnASmallScreenTheDrawerCoversTheTableAndItsButtonsStayVisible) {
    addShare("Docs", "/folders/Docs");
    openOn(1024, 600);
    for (const QSize size : {QSize(900, 560), QSize(820, 520)}) {
        window().resize(size);
        QApplication::processEvents();
        const QSize before = window().size();
        const int table = widget<QTableView>("normalTableView").width();
        clickRow("normalTableView", 0);
        clickTitled("Edit Share");
        QApplication::processEvents();
        EXPECT_EQ(window().height(), before.height());
        EXPECT_LE(window().width(), 1024);
        if (window().width() == before.width()) {
            EXPECT_EQ(widget<QTableView>("normalTableView").width(), table);
        }
        EXPECT_TRUE(isInSight(widget<QPushButton>("createNewShare")));
        // A field further down scrolls into view when it gets the focus.
        widget<QLineEdit>("shareName").setFocus();
        for (int step = 0; step < 30 && !widget<QCheckBox>("showSystemUsersGroups").hasFocus(); ++step) {
            QTest::keyClick(window().focusWidget(), Qt::Key_Tab);
        }
        EXPECT_TRUE(isInSight(widget<QCheckBox>("showSystemUsersGroups")));
        EXPECT_TRUE(isInSight(widget<QPushButton>("createNewShare")));
        clickTitled("Close");
        QApplication::processEvents();
        EXPECT_EQ(window().size(), before);
        EXPECT_FALSE(drawer().isVisible());
    }
}

TEST_F(Room, OnALargeScreenTheDrawerIsBesideTheTableUntilTheWindowIsMadeNarrow) {
    addShare(std::string(190, 'w'), "/folders/Docs");
    openOn(1600, 900);
    const int table = widget<QTableView>("normalTableView").width();
    clickRow("normalTableView", 0);
    clickTitled("Edit Share");
    QApplication::processEvents();
    EXPECT_EQ(window().width(), 900 + drawer().width());
    EXPECT_EQ(widget<QTableView>("normalTableView").width(), table);
    EXPECT_LT(within(widget<QTableView>("normalTableView")).right(), within(drawer()).left());
    window().resize(900, 600);
    QApplication::processEvents();
    EXPECT_GT(within(widget<QTableView>("normalTableView")).right(), within(drawer()).left());
    EXPECT_EQ(within(drawer()).right(), window().rect().right());
}

TEST_F(Room, EveryControlOfEveryPageIsWithinReachOnASmallScreen) {
    openOn(1024, 600);
    window().resize(900, 564);
    for (int page = 0; page < 5; ++page) {
        showPage(page);
        QTest::qWait(20);
        EXPECT_LE(window().height(), 564) << page;
        EXPECT_LE(window().width(), 900) << page;
        int controls = 0;
        for (const QWidget* each : window().findChildren<QWidget*>()) {
            const bool isControl = qobject_cast<const QAbstractButton*>(each) != nullptr ||
                                   qobject_cast<const QLineEdit*>(each) != nullptr ||
                                   qobject_cast<const QComboBox*>(each) != nullptr;
            if (isControl && each->isVisible() && !each->objectName().startsWith("qt_")) {
                ++controls;
                EXPECT_TRUE(isInSight(*each)) << page << ' ' << each->objectName().toStdString();
            }
        }
        EXPECT_GT(controls, 5);
    }
}

TEST_F(Room, TheDrawerOpensAgainOnThePageWhereItWasLeftOpen) {
    openOn(1024, 600);
    clickTitled("New Share");
    showPage(1);
    EXPECT_FALSE(drawer().isVisible());
    showPage(3);
    showPage(0);
    EXPECT_TRUE(drawer().isVisible());
    clickTitled("Close");
    showPage(2);
    showPage(0);
    EXPECT_FALSE(drawer().isVisible());
    // Opening or closing it on another page counts as well.
    showPage(1);
    useMenu("Show or Hide Share Editor");
    showPage(2);
    EXPECT_FALSE(drawer().isVisible());
    useMenu("Show or Hide Share Editor");
    useMenu("Show or Hide Share Editor");
    showPage(0);
    EXPECT_FALSE(drawer().isVisible());
}

TEST_F(Room, AReviewFitsTheScreenWithItsDetailsAndScrolls) {
    openOn(1024, 600);
    review::Plan plan;
    for (int run = 0; run < 80; ++run) {
        plan.runs.push_back({"/usr/bin/nicl", {".", "-delete", "/users/user" + std::to_string(run)}, ""});
        plan.warnings.push_back({"name", "User " + std::string(static_cast<std::size_t>(run), 'w') +
                                             " is the last one in a group."});
    }
    const auto dialog = frontend::makePlanDialog(plan, &window());
    dialog->show();
    for (const bool hasDetails : {false, true}) {
        if (hasDetails) {
            QTest::mouseClick(dialog->findChild<QPushButton*>("reviewDetails"), Qt::LeftButton);
            EXPECT_TRUE(widget<QWidget>("reviewDetailsText").isVisible());
        }
        QApplication::processEvents();
        EXPECT_GT(dialog->height(), 300);
        EXPECT_LE(dialog->frameGeometry().height(), 600);
        for (const auto* label : dialog->findChildren<QLabel*>()) {
            EXPECT_LE(label->minimumSizeHint().width(), label->width()) << "a name is cut off";
        }
        for (const auto* button : dialog->findChildren<QPushButton*>()) {
            EXPECT_TRUE(isInSight(*button)) << button->text().toStdString();
        }
    }
}

TEST(AWindowsPlace, IsKeptIfItsTitleCanBeReachedAndElseMovedIntoView) {
    const std::vector<QRect> screens = {QRect(0, 0, 1280, 800), QRect(1280, 0, 1024, 600)};

    struct Case {
        QRect left;
        QRect back;
    };

    for (const Case& each : {
             Case{QRect(100, 50, 900, 600), QRect(100, 50, 900, 600)},
             Case{QRect(-700, 300, 900, 600), QRect(-700, 300, 900, 600)}, // partly outside, kept
             Case{QRect(1300, 20, 900, 540), QRect(1300, 20, 900, 540)},   // on the other screen
             Case{QRect(3000, 20, 900, 600), QRect(190, 100, 900, 600)},   // on a screen that is gone
             Case{QRect(100, -500, 900, 600), QRect(190, 100, 900, 600)},  // its title cannot be reached
             Case{QRect(1400, 200, 1600, 900), QRect(1280, 0, 1024, 564)}, // from a larger screen
         }) {
        EXPECT_EQ(frontend::placeInView(each.left, screens), each.back)
            << each.left.x() << ' ' << each.left.y();
    }
}

TEST_F(Room, TheWindowIsRestoredAsItWasLeft) {
    const std::string key = "BrindleWindow.mainWindow";
    auto& defaults = NSUserDefaults::standardUserDefaults();
    defaults.setString("9000\t40\t910\t540\tnormal\topen", key);
    openOn(1600, 900);
    constexpr int frame = 8; // only known once it is shown
    EXPECT_TRUE(QRect(0, 0, 1600 + frame, 900).contains(window().geometry()));
    EXPECT_TRUE(drawer().isVisible());
    EXPECT_EQ(window().size(), QSize(910 + drawer().width(), 540));
    const QPoint place(30, 20);
    window().move(place);
    window().resize(1400, 700);
    const std::string normal = "30\t20\t" + std::to_string(1400 - drawer().width()) + "\t700\t";
    // It is saved some time after the last change.
    const auto expectSaved = [&](const std::string& text) {
        static_cast<void>(QTest::qWaitFor([&] { return defaults.stringForKey(key) == text; }));
        EXPECT_EQ(defaults.stringForKey(key), text);
    };
    expectSaved(normal + "normal\topen");
    window().showMaximized();
    clickTitled("Close");
    expectSaved(normal + "maximized\tclosed");
    showPage(1);
    EXPECT_EQ(defaults.stringForKey(key), normal + "maximized\tclosed");
}

/// The window with the colours of three desktops.
class Colours : public MainWindow {
  protected:
    static std::vector<std::pair<const char*, QPalette>> desktops() {
        QPalette high(Qt::black);
        high.setColor(QPalette::Highlight, Qt::yellow);
        high.setColor(QPalette::HighlightedText, Qt::black);
        return {{"light", QPalette(QColor(0xef, 0xef, 0xef))},
                {"dark", QPalette(QColor(0x35, 0x35, 0x35))},
                {"high contrast", high}};
    }

    /// Expects readable texts in the window's own inks on their backgrounds. Returns how many there are.
    int expectInksAreReadable(const char* desktop) {
        QWidget& window = widget<QWidget>("mainWindow");
        const QImage picture = window.grab().toImage();
        int inks = 0;
        for (const QLabel* each : window.findChildren<QLabel*>()) {
            if (!each->isVisible() || each->text().isEmpty() ||
                each->findChild<QObject*>("inkKeeper") == nullptr) {
                continue;
            }
            ++inks;
            const QColor ground = picture.pixelColor(each->mapTo(&window, QPoint(0, 0)));
            const QColor ink = each->palette().color(QPalette::WindowText);
            EXPECT_GE(contrast(ink, ground), leastContrast)
                << desktop << ": " << each->text().toStdString() << ' ' << ink.name().toStdString() << " on "
                << ground.name().toStdString();
        }
        return inks;
    }

    /// Returns the contrast of the left edge of a control to what is around it.
    double edgeOf(const char* name) {
        const auto& control = widget<QWidget>(name);
        EXPECT_TRUE(control.isVisible() && control.isEnabled()) << name;
        constexpr int margin = 4;
        const QRect place(control.mapTo(control.window(), QPoint(-margin, control.height() / 2)),
                          QSize(2 * margin, 1));
        const QImage drawn = control.window()->grab(place).toImage();
        double edge = 0;
        for (int x = 0; x < drawn.width(); ++x) {
            edge = std::max(edge, contrast(drawn.pixelColor(x, 0), drawn.pixelColor(0, 0)));
        }
        return edge;
    }

    /// Returns the contrast of the line on top of the selected tab to the window.
    double lineOfSelectedTab(const QPalette& palette) {
        auto* tabs = widget<QWidget>("mainTabView").findChild<QTabBar*>();
        const QRect tab = tabs->tabRect(tabs->currentIndex());
        return contrast(tabs->grab().toImage().pixelColor(tab.center().x(), tab.top() + 1),
                        palette.color(QPalette::Window));
    }
};

TEST_F(Colours, NotesWarningsAndMarksCanBeReadOnEveryDesktop) {
    addShare("Docs", host.root().string());
    open();
    control<NSTextField>("smbConfNotice").setStringValue("Something is wrong with smb.conf.");
    clickTitled("New Share");
    typeInto("directory", "nowhere");
    for (const auto& [desktop, palette] : desktops()) {
        QApplication::setPalette(palette); // as if the desktop changes while the window is open
        int inks = 0;
        for (const int page : {1, 2, 4, 0}) {
            showPage(page);
            inks += expectInksAreReadable(desktop);
        }
        EXPECT_GE(inks, 6) << desktop;
        for (const char* control : {"showSystemUsersGroups", "shareName", "owner", "createNewShare"}) {
            EXPECT_GT(edgeOf(control), leastEdgeContrast - 0.1) << desktop << ": " << control;
        }
        EXPECT_GT(lineOfSelectedTab(palette), leastEdgeContrast - 0.1) << desktop;
        QPalette hiding = palette;
        hiding.setColor(QPalette::PlaceholderText, palette.color(QPalette::Base).darker(110));
        EXPECT_GE(contrast(frontend::placeholderOn(hiding), palette.color(QPalette::Base)), leastContrast)
            << desktop;
        for (const Mark mark : {Mark::Warning, Mark::Information}) {
            for (const auto ground : {QPalette::Base, QPalette::AlternateBase, QPalette::Window}) {
                const auto drawnOn = ground == QPalette::Window ? ground : QPalette::Base;
                const QImage drawn = frontend::markIcon(mark, drawnOn).pixmap(QSize(32, 32), 1.0).toImage();
                EXPECT_GE(contrast(drawn.pixelColor(8, 26), palette.color(ground)), leastContrast) << desktop;
            }
            const QImage selected =
                frontend::markIcon(mark).pixmap(QSize(32, 32), 1.0, QIcon::Selected).toImage();
            EXPECT_GE(contrast(selected.pixelColor(8, 26), palette.color(QPalette::Highlight)), 3)
                << desktop << ": at least like the desktop's own text";
        }
    }
}

TEST_F(Colours, ASelectedRowCanBeReadWithEveryDesktopsHighlight) {
    open();

    struct Case {
        QColor highlight;
        QColor text;
    };

    for (const Case& each :
         {Case{QColor(0x30, 0x8c, 0xc6), Qt::white}, Case{QColor(0x3d, 0xae, 0xe9), Qt::white},
          Case{QColor(0x80, 0x80, 0x80), Qt::black}, Case{Qt::yellow, Qt::black}}) {
        QPalette palette;
        palette.setColor(QPalette::Highlight, each.highlight);
        palette.setColor(QPalette::HighlightedText, each.text);
        const bool isReadable = contrast(each.highlight, each.text) >= leastContrast;
        QApplication::style()->polish(palette);
        for (const auto group : {QPalette::Active, QPalette::Inactive}) {
            const QColor highlight = palette.color(group, QPalette::Highlight);
            EXPECT_GE(contrast(highlight, palette.color(group, QPalette::HighlightedText)), leastContrast)
                << highlight.name().toStdString();
            EXPECT_EQ(highlight == each.highlight, isReadable) << "a good one is kept";
        }
    }
}

} // namespace
