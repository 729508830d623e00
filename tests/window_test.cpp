// The window's controls as a user uses them: real mouse and key events on Qt's offscreen platform.

#include "support/WindowFixture.h"

namespace {

/// Drops a text at the field's left end.
void dropOnto(QLineEdit& edit, const QString& text) {
    QMimeData data;
    data.setText(text);
    QDragEnterEvent enter(QPoint(1, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&edit, &enter);
    QDropEvent event(QPointF(1, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&edit, &event);
}

TEST_F(Window, AnEditThatTheFieldRefusesChangesNeitherTextNorCaretNorSelection) {
    show();
    QLineEdit* edit = numberEdit();
    const std::vector<std::pair<const char*, std::function<void()>>> edits = {
        {"refused 1x4", [edit] { QTest::keyClick(edit, 'x'); }},
        {"refused 13 44",
         [edit] {
             QApplication::clipboard()->setText("3 4");
             QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
         }},
        {"refused 1é4",
         [edit] {
             QInputMethodEvent event;
             event.setCommitString("é");
             QApplication::sendEvent(edit, &event);
         }},
        {"refused a1234", [edit] { dropOnto(*edit, "a"); }},
    };
    for (const auto& [told, perform] : edits) {
        desk.number->setStringValue("1234");
        QApplication::processEvents();
        edit->setFocus();
        edit->setSelection(3, -2); // with the caret at its start
        desk.told.clear();
        perform();
        EXPECT_EQ(desk.told, Told{told});
        EXPECT_EQ(edit->text(), "1234") << told;
        EXPECT_EQ(desk.number->stringValue(), "1234") << told;
        EXPECT_EQ(edit->selectedText(), "23") << told;
        EXPECT_EQ(edit->cursorPosition(), 1) << told;
        EXPECT_FALSE(QToolTip::isVisible()) << "a refusal only beeps";
    }
}

TEST_F(Window, AnAcceptedEditIsSentOnceAndTheFieldIsTidiedWhenItIsLeft) {
    show();
    QLineEdit* edit = numberEdit();
    edit->setFocus();
    QTest::keyClicks(edit, "007");
    EXPECT_EQ(desk.told, (Told{"typed 0", "typed 00", "typed 007"}));
    QTest::keyClick(edit, Qt::Key_Backspace);
    QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(desk.number->stringValue(), edit->text().toStdString());
    desk.number->setStringValue("007");
    widget<QWidget>("table")->setFocus();
    EXPECT_EQ(edit->text(), "7");
    EXPECT_EQ(desk.number->stringValue(), "7");
}

TEST_F(Window, PastedOrDroppedTextEntersWithoutItsControlCharacters) {
    show();
    QLineEdit* edit = numberEdit();
    const QString text = "\x1B"
                         "5\x01";
    for (const bool dropped : {false, true}) {
        desk.number->setStringValue("12");
        QApplication::processEvents();
        edit->setFocus();
        edit->setCursorPosition(dropped ? 0 : 1);
        if (dropped) {
            dropOnto(*edit, text);
        } else {
            QApplication::clipboard()->setText(text);
            QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
        }
        EXPECT_EQ(desk.number->stringValue(), dropped ? "512" : "152");
        EXPECT_EQ(edit->text().toStdString(), desk.number->stringValue());
        EXPECT_EQ(edit->cursorPosition(), dropped ? 1 : 2);
    }
}

TEST_F(Window, TextFromAnInputMethodBecomesOneLineWithoutControlCharacters) {
    show();
    desk.number->setFormatter(nullptr);
    QLineEdit* edit = numberEdit();
    edit->setFocus();
    QInputMethodEvent event;
    event.setCommitString("a\r\nb\x01\tc\x1B");
    QApplication::sendEvent(edit, &event);
    EXPECT_EQ(desk.number->stringValue(), "a b\tc");
    EXPECT_EQ(edit->text().toStdString(), desk.number->stringValue());
    EXPECT_EQ(edit->cursorPosition(), 5);
    EXPECT_EQ(desk.told, Told{"typed a b\tc"});
}

TEST_F(Window, AFieldThatOnlyShowsItsTextTakesNoDrop) {
    show();
    desk.number->setStringValue("12");
    desk.number->setEditable(false);
    QApplication::processEvents();
    dropOnto(*numberEdit(), "5");
    EXPECT_EQ(desk.number->stringValue(), "12");
    EXPECT_EQ(numberEdit()->text(), "12");
    EXPECT_EQ(desk.told, Told{});
}

TEST_F(Window, AFieldsFormatterIsToldWhatWasSelectedAndWhereTheCaretWillBe) {
    struct Ranges : NSFormatter {
        bool isPartialStringValid(std::string&, NSRange& caret, const std::string&, NSRange selected,
                                  std::string&) override {
            told.push_back({selected.location, selected.length, caret.location, caret.length});
            return true;
        }

        std::vector<std::array<std::size_t, 4>> told;
    };

    show();
    const auto ranges = std::make_shared<Ranges>();
    desk.number->setFormatter(ranges);
    desk.number->setStringValue("12345");
    QApplication::processEvents();
    QLineEdit* edit = numberEdit();
    edit->setFocus();
    edit->setSelection(4, -3); // from right to left
    QTest::keyClick(edit, 'x');
    QTest::keyClick(edit, 'y');
    QTest::keyClick(edit, Qt::Key_Backspace);
    EXPECT_EQ(ranges->told,
              (std::vector<std::array<std::size_t, 4>>{{1, 3, 2, 0}, {2, 0, 3, 0}, {3, 0, 2, 0}}));
    EXPECT_EQ(edit->text(), "1x5");
}

TEST_F(Window, TextFromTheProgramIsShownUncheckedAndIsNoEdit) {
    show();
    desk.number->setStringValue("-2");
    desk.check->setState(NSOnState);
    desk.popUp->selectItemAtIndex(2);
    desk.matrix->setStateAt(0, 1, NSOnState);
    QApplication::processEvents();
    EXPECT_EQ(numberEdit()->text(), "-2");
    EXPECT_TRUE(widget<QAbstractButton>("check")->isChecked());
    EXPECT_EQ(widget<QComboBox>("popUp")->currentText(), "Cherry");
    EXPECT_EQ(desk.told, Told{});
    numberEdit()->setFocus();
    numberEdit()->end(false);
    QTest::keyClick(numberEdit(), 'x');
    EXPECT_EQ(numberEdit()->text(), "-2");
}

TEST_F(Window, ButtonsBoxesAndCellsAreClickedThroughTheirModels) {
    show();
    // An ampersand, not a mnemonic.
    EXPECT_EQ(frontend::plainTitle(widget<QAbstractButton>("press")->text()), "Press & Go");
    QTest::mouseClick(widget<QWidget>("press"), Qt::LeftButton);
    QTest::mouseClick(widget<QWidget>("check"), Qt::LeftButton, {},
                      QPoint(8, widget<QWidget>("check")->height() / 2));
    EXPECT_EQ(desk.check->state(), NSOnState);
    auto cells = widget<QWidget>("matrix")->findChildren<QAbstractButton*>();
    QTest::mouseClick(cells.at(1), Qt::LeftButton, {}, QPoint(8, cells.at(1)->height() / 2));
    EXPECT_EQ(desk.matrix->stateAt(0, 0), NSOffState);
    EXPECT_EQ(desk.matrix->stateAt(0, 1), NSOnState);
    EXPECT_EQ(desk.told, (Told{"pressed press", "pressed check", "pressed matrix"}));
    desk.told.clear();
    numberEdit()->setFocus();
    QTest::keyClick(numberEdit(), Qt::Key_Return);
    EXPECT_EQ(desk.told, Told{"pressed press"});
    desk.press->setEnabled(false);
    QApplication::processEvents();
    QTest::keyClick(numberEdit(), Qt::Key_Return);
    EXPECT_EQ(desk.told, Told{"pressed press"});
}

TEST_F(Window, APopUpCountsTheSameChoiceAgainAndFollowsTypedLetters) {
    show();
    auto* combo = widget<QComboBox>("popUp");
    combo->setFocus();
    QTest::keyClick(combo, 'b');
    EXPECT_EQ(desk.popUp->indexOfSelectedItem(), 1);
    combo->showPopup();
    QTest::keyClick(combo->view(), Qt::Key_Return);
    EXPECT_EQ(desk.told, (Told{"chose Banana", "chose Banana"}));
    desk.popUp->setEnabled(false);
    QApplication::processEvents();
    QTest::keyClick(combo, 'c');
    EXPECT_FALSE(combo->isEnabled());
    EXPECT_EQ(combo->currentText(), "Banana");
    desk.popUp->removeAllItems();
    QApplication::processEvents();
    EXPECT_EQ(combo->currentIndex(), -1);
    EXPECT_EQ(combo->currentText(), "");
    for (int item = 0; item < 10'000; ++item) {
        desk.popUp->addItemWithTitle("user" + std::to_string(item));
    }
    QApplication::processEvents();
    EXPECT_EQ(combo->count(), 10'000);
    EXPECT_EQ(combo->currentText(), "user0");
}

TEST_F(Window, ManyChangesAreRedrawnOnce) {
    frontend::RefreshQueue queue;
    NSButton element(NSButtonKind::Push);
    int refreshes = 0;
    QObject owner;
    new frontend::Binding(&owner, queue, element.changed, [&refreshes] { ++refreshes; });
    refreshes = 0;
    for (int change = 0; change < 10'000; ++change) {
        element.changed.emit();
    }
    QApplication::processEvents();
    EXPECT_EQ(refreshes, 1);
}

TEST_F(Window, ATableAsksOnlyForTheCellsThatItDraws) {
    show();
    desk.rows = 100'000;
    desk.table->reloadData();
    QApplication::processEvents();
    auto* view = widget<QTableView>("table");
    EXPECT_EQ(view->model()->rowCount(), 100'000);
    view->scrollToBottom();
    QApplication::processEvents();
    desk.table->selectRow(50'000);
    QApplication::processEvents();
    EXPECT_TRUE(view->viewport()->rect().intersects(view->visualRect(view->model()->index(50'000, 0))));
    EXPECT_GT(desk.cellsAsked, 10);
    EXPECT_LT(desk.cellsAsked, 1000);
}

TEST_F(Window, AToolTipShowsMarkupInDataAsPlainText) {
    show();
    desk.rows = 1;
    desk.cell = "<b>Films</b> & <i>more</i>";
    desk.table->reloadData();
    QApplication::processEvents();
    const auto* model = widget<QTableView>("table")->model();
    QTextDocument tip; // reads what a tip reads
    tip.setHtml(model->data(model->index(0, 0), Qt::ToolTipRole).toString());
    EXPECT_EQ(tip.toPlainText().toStdString(), desk.cell);
}

TEST_F(Window, SelectingRowsNotifiesOnceWhoeverDoesIt) {
    show();
    desk.rows = 5;
    desk.table->reloadData();
    QApplication::processEvents();
    auto* view = widget<QTableView>("table");
    const auto click = [view](int row, Qt::KeyboardModifiers modifiers) {
        QTest::mouseClick(view->viewport(), Qt::LeftButton, modifiers,
                          view->visualRect(view->model()->index(row, 0)).center());
    };
    click(1, Qt::NoModifier);
    click(3, Qt::ControlModifier);
    EXPECT_EQ(desk.told, (Told{"selected 1", "selected 1 3"}));
    click(1, Qt::NoModifier);
    click(3, Qt::ShiftModifier);
    EXPECT_EQ(desk.told.back(), "selected 1 2 3");
    desk.told.resize(2);
    desk.table->selectRow(4);
    QApplication::processEvents();
    EXPECT_EQ(desk.told.size(), 3U);
    desk.rows = 3; // the selected row goes away without a notification
    desk.table->reloadData();
    QApplication::processEvents();
    EXPECT_FALSE(view->selectionModel()->hasSelection());
    EXPECT_EQ(desk.told.size(), 3U);
    click(2, Qt::NoModifier);
    desk.table->reloadData();
    QApplication::processEvents();
    EXPECT_TRUE(view->selectionModel()->isRowSelected(2));
    EXPECT_EQ(desk.told.back(), "selected 2");
}

} // namespace
