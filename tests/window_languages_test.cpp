// Every text of the window has enough room, in every language, at the size with which the window opens.

#include "frontends/qt/ElidedLabel.h"
#include "platform/appkit/NSWindow.h"
#include "support/MainWindowFixture.h"

#include <QCheckBox>
#include <QFile>
#include <QGroupBox>
#include <QHeaderView>
#include <QLibraryInfo>
#include <QMenuBar>
#include <QStyleOptionComboBox>

namespace {

constexpr int buttonEdges = 12;
constexpr int fieldEdges = 8;

/// Returns the text without mnemonics.
QString plain(QString text) {
    return text.replace("&&", "\1").remove('&').replace('\1', '&');
}

int widthOf(const QWidget& widget, const QString& text) {
    return widget.fontMetrics().horizontalAdvance(plain(text));
}

/// Returns the width for the text of a pop-up's selected item.
int roomIn(const QComboBox& popUp) {
    QStyleOptionComboBox option;
    option.initFrom(&popUp);
    option.subControls = QStyle::SC_All;
    return popUp.style()
        ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &popUp)
        .width();
}

class WindowInALanguage : public MainWindow, public testing::WithParamInterface<const char*> {
  protected:
    WindowInALanguage() : MainWindow(optionsFor(GetParam())) {}

    void SetUp() override {
        useScreen(1024, 768); // large enough for the size in the interface file
        MainWindow::SetUp();
    }

    static TestHost::Options optionsFor(const char* language) {
        TestHost::Options options;
        options.languages = {language, "English"};
        return options;
    }

    /// Returns the visible widgets of a kind.
    template <class Kind>
    static std::vector<Kind*> shownIn(const QWidget& window) {
        std::vector<Kind*> found;
        for (Kind* each : window.findChildren<Kind*>()) {
            if (each->isVisible()) {
                found.push_back(each);
            }
        }
        return found;
    }

    static void expectRoom(const QString& text, int needed, int there) {
        EXPECT_LE(needed, there) << text.toStdString();
    }

    /// Expects that nothing covers its ends. Scrolling contents may be out of sight.
    static void expectWhole(const QWidget& widget, const QString& text) {
        if (const QRegion seen = widget.visibleRegion(); !seen.isEmpty()) {
            expectRoom(text, widget.width(), seen.boundingRect().width());
        }
    }

    static void expectRoomForTexts(const QWidget& window) {
        for (const QLabel* label : shownIn<QLabel>(window)) {
            if (dynamic_cast<const frontend::ElidedLabel*>(label) != nullptr) {
                continue;
            }
            const QRect room(0, 0, label->width(), QWIDGETSIZE_MAX);
            const int wrap = label->wordWrap() ? Qt::TextWordWrap : 0;
            const QRect needed = label->fontMetrics().boundingRect(room, wrap, plain(label->text()));
            expectRoom(label->text(), needed.width(), label->width());
            expectRoom(label->text(), needed.height(), label->height());
            expectWhole(*label, label->text());
        }
        for (const QAbstractButton* button : shownIn<QAbstractButton>(window)) {
            if (!button->text().isEmpty()) {
                const bool isBox = qobject_cast<const QCheckBox*>(button) != nullptr;
                const int needed =
                    isBox ? button->sizeHint().width() : widthOf(*button, button->text()) + buttonEdges;
                expectRoom(button->text(), needed, button->width());
                expectWhole(*button, button->text());
            }
        }
        for (const QGroupBox* box : shownIn<QGroupBox>(window)) {
            expectRoom(box->title(), widthOf(*box, box->title()), box->width());
        }
        for (const QComboBox* popUp : shownIn<QComboBox>(window)) {
            expectRoom(popUp->currentText(), widthOf(*popUp, popUp->currentText()), roomIn(*popUp));
        }
        for (const QLineEdit* field : shownIn<QLineEdit>(window)) {
            if (field->maximumWidth() < QWIDGETSIZE_MAX) { // a field for a number or "no limit"
                expectRoom(field->text(), widthOf(*field, field->text()) + fieldEdges, field->width());
            }
        }
        expectRoomForTitles(window);
    }

    /// Expects room for every item of each pop-up.
    static void expectRoomForItems(const QWidget& window) {
        for (const QComboBox* popUp : shownIn<QComboBox>(window)) {
            for (int item = 0; item < popUp->count(); ++item) {
                expectRoom(popUp->itemText(item), widthOf(*popUp, popUp->itemText(item)), roomIn(*popUp));
            }
        }
    }

    /// Expects room for the titles of columns and pages.
    static void expectRoomForTitles(const QWidget& window) {
        for (const QHeaderView* header : shownIn<QHeaderView>(window)) {
            for (int section = 0; header->orientation() == Qt::Horizontal && section < header->count();
                 ++section) {
                if (!header->isSectionHidden(section)) {
                    const QString title =
                        header->model()->headerData(section, Qt::Horizontal, Qt::DisplayRole).toString();
                    const int margins = 2 * header->style()->pixelMetric(QStyle::PM_HeaderMargin);
                    expectRoom(title, widthOf(*header, title) + margins, header->sectionSize(section));
                }
            }
        }
        for (const QTabBar* bar : shownIn<QTabBar>(window)) {
            expectRoom(bar->tabText(bar->count() - 1), bar->tabRect(bar->count() - 1).right(), bar->width());
        }
    }
};

INSTANTIATE_TEST_SUITE_P(Of, WindowInALanguage, testing::Values("English", "French", "German", "Japanese"),
                         [](const auto& test) { return std::string(test.param); });

TEST_P(WindowInALanguage, HasRoomForItsTexts) {
    addUser("alice", "501");
    addGroup("staff", "20", {"alice"});
    addShare("Docs", "/shares/docs");
    open();
    const auto& window = widget<QWidget>("mainWindow");
    if (!window.fontMetrics().inFont(QString::fromStdString(NSLocalizedString("Shares")).front())) {
        GTEST_SKIP() << "no font has this language's letters";
    }
    const QSize opened = window.size();
    for (int page = 0; page < 5; ++page) {
        showPage(page);
        const char* pages = page == 3 ? "afsPropsPage" : page == 4 ? "smbPropsPage" : nullptr;
        for (int part = 0; part < (pages == nullptr ? 1 : 4); ++part) {
            SCOPED_TRACE(std::to_string(page) + "." + std::to_string(part));
            if (pages != nullptr) {
                control<NSPopUpButton>(pages).performSelect(part);
            }
            QTest::qWait(250); // the labels of a new page change once more when it gets its mnemonics
            expectRoomForTexts(window);
            expectRoomForItems(window);
        }
    }
    EXPECT_EQ(window.size(), opened) << "no page made the window wider";
    EXPECT_EQ(opened, QSize(900, 600)) << "as the interface file has it";

    showPage(0);
    app().drawer->open();
    QTest::qWait(300); // wait until it has slid open
    expectRoomForTexts(window);
    app().passwordWindow->makeKeyAndOrderFront();
    QApplication::processEvents();
    expectRoomForTexts(widget<QWidget>("passwordWindow"));
}

TEST_P(WindowInALanguage, HasQtsOwnTextsInTheSameLanguage) {
    if (!QFile::exists(QLibraryInfo::path(QLibraryInfo::TranslationsPath) + "/qtbase_de.qm")) {
        GTEST_SKIP() << "Qt's translations are not installed";
    }
    EXPECT_EQ(QCoreApplication::translate("QPlatformTheme", "Cancel").toStdString(),
              NSLocalizedString("Cancel"));
}

TEST_P(WindowInALanguage, HasMenuLettersThatAreOnTheKeyboard) {
    open();
    QTest::qWait(0);
    for (const QAction* each : widget<QWidget>("mainWindow").findChild<QMenuBar*>()->actions()) {
        const qsizetype place = each->text().indexOf('&') + 1;
        EXPECT_TRUE(place == 0 || each->text().at(place).script() == QChar::Script_Latin)
            << each->text().toStdString();
    }
}

} // namespace
