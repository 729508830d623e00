// The control models and the application as a user, the controller and a front-end use them.

#include "platform/appkit/SilentPresenter.h"
#include "support/AppKitFixture.h"

namespace {

TEST_F(AppKit, AReloadKeepsTheSelectedRowsThatStillExistWithoutANotification) {
    Recorder source;
    NSTableView table;
    table.setDataSource(&source);
    table.setDelegate(&source);
    table.setAllowsMultipleSelection(true);
    source.rows = 5;
    table.reloadData();
    table.selectRows({4, 1, 9, 1, -1});
    EXPECT_EQ(table.selectedRows(), (std::vector<int>{1, 4}));
    source.rows = 3;
    EXPECT_EQ(table.numberOfRows(), 5) << "the number of rows at the last reload";
    table.reloadData();
    EXPECT_EQ(table.selectedRows(), std::vector<int>{1});
    table.selectRow(1);
    EXPECT_EQ(source.told, Names{"selected 1"}) << "only for the first selection";
    EXPECT_EQ(table.objectValue({"User", "User"}, 2), "User2");
    EXPECT_EQ(table.objectValue({"User", "User"}, 3), "");
}

TEST_F(AppKit, ASingleSelectionTableTakesTheFirstRowGiven) {
    Recorder source;
    NSTableView table;
    table.setDataSource(&source);
    source.rows = 3;
    table.reloadData();
    table.selectRows({2, 0});
    EXPECT_EQ(table.selectedRow(), 2);
    table.selectRow(7);
    EXPECT_EQ(table.selectedRow(), -1);
}

TEST_F(AppKit, ARefusedEditLeavesTheFieldAndIsReported) {
    Recorder delegate;
    NSTextField field;
    field.setFormatter(std::make_shared<NoShouting>());
    field.setDelegate(&delegate);
    int sent = 0;
    field.setAction({"x:", [&sent](NSControl*) { ++sent; }});
    EXPECT_TRUE(field.proposeEdit("hey", 3, {}));
    EXPECT_FALSE(field.proposeEdit("hey!", 4, {3, 0}));
    EXPECT_EQ(field.stringValue(), "hey");
    EXPECT_EQ(host.refusals, Names{"too loud"});
    EXPECT_EQ(delegate.told, Names{"hey->hey!: too loud"});
    EXPECT_EQ(sent, 1);
    field.setStringValue("LOUD!");
    EXPECT_EQ(field.stringValue(), "LOUD!") << "text from the program is not checked";
    field.setEnabled(false);
    EXPECT_FALSE(field.proposeEdit("quiet", 5, {}));
}

TEST_F(AppKit, NoLineBreakOrControlCharacterEntersAField) {
    struct Case {
        std::string before;
        std::string proposed;
        std::string after;
    };

    const Case cases[] = {
        {"", "a\nb\r\nc\rd\u2028e\u0085f", "a b c d e f"},
        {"", "a\x1B\x7F\u0090\tb", "a\tb"},
        {"", std::string("a\0b", 3), "ab"},
        {"", "\xFF\x85", "\xFF\x85"},    // bytes that are not characters
        {"a\nb", "a\nbc", "a\nbc"},      // the program's text stays
        {"a\u2026b", "a\u2028b", "a b"}, // shares bytes with the character that it replaces
        {"a\u2028b", "a\u2028\u2028b", "a\u2028 b"},
        {"x\n\n", "x\n", "x\n"},
    };
    for (const Case& each : cases) {
        NSTextField field;
        field.setStringValue(each.before);
        EXPECT_TRUE(field.proposeEdit(each.proposed, 1, {}));
        EXPECT_EQ(field.stringValue(), each.after);
    }
}

TEST_F(AppKit, ANumberFieldShowsItsNumberWhenItIsLeft) {
    NSTextField field;
    const auto formatter = std::make_shared<NSNumberFormatter>();
    formatter->setFormat("##0");
    field.setFormatter(formatter);
    Names shown;
    for (const char* typed : {"007", "", "12a", "-5", "٤٢", "1٢", "-", "𝟗𝟗", "½", "\xff", "3000000000",
                              "04294967295", "99999999999999999999", "-99999999999999999999"}) {
        field.setStringValue(typed);
        field.endEditing();
        shown.push_back(field.stringValue());
    }
    EXPECT_EQ(shown, (Names{"7", "", "12a", "-5", "42", "12", "-", "99", "½", "\xff", "3000000000",
                            "4294967295", "99999999999999999999", "-99999999999999999999"}));
    EXPECT_THROW(formatter->setFormat("#,##0"), std::invalid_argument);
}

TEST_F(AppKit, APopUpSelectsByTitleTagAndIndexOrNothing) {
    NSPopUpButton menu;
    EXPECT_EQ(menu.titleOfSelectedItem(), std::nullopt);
    for (const char* title : {"a", "b", "b"}) {
        menu.addItemWithTitle(title);
    }
    EXPECT_EQ(menu.indexOfSelectedItem(), 0);
    menu.setTag(2, 850);
    EXPECT_EQ(menu.indexOfItemWithTag(850), 2);
    EXPECT_EQ(menu.indexOfItemWithTag(7), -1);
    menu.selectItemWithTitle("b");
    EXPECT_EQ(menu.indexOfSelectedItem(), 1) << "the first of two";
    menu.selectItemWithTitle("none");
    EXPECT_EQ(menu.indexOfSelectedItem(), -1);
    EXPECT_EQ(menu.tagOfSelectedItem(), 0);
    EXPECT_THROW(menu.selectItemAtIndex(3), std::out_of_range);
    int sent = 0;
    menu.setAction({"x:", [&sent](NSControl*) { ++sent; }});
    menu.performSelect(2);
    menu.performSelect(2);
    menu.performSelect(9);
    EXPECT_EQ(sent, 2) << "choosing the selected item again counts; choosing a missing one does not";
    menu.setEnabled(false);
    menu.performSelect(0);
    EXPECT_EQ(sent, 2);
    EXPECT_EQ(menu.indexOfSelectedItem(), 2) << "nobody can choose from a disabled menu";
    menu.removeAllItems();
    EXPECT_EQ(menu.indexOfSelectedItem(), -1);
}

TEST_F(AppKit, AClickChangesACheckBoxOrCellBeforeItsActionAndNothingWhileDisabled) {
    NSButton box(NSButtonKind::CheckBox);
    NSMatrix matrix(2, 1);
    Names seen;
    box.setAction({"x:", [&](NSControl*) { seen.push_back("box " + std::to_string(box.state())); }});
    matrix.setAction(
        {"x:", [&](NSControl*) { seen.push_back("cell " + std::to_string(matrix.stateAt(1, 0))); }});
    for (const bool enabled : {true, false}) {
        box.setEnabled(enabled);
        matrix.setEnabled(enabled);
        box.performClick();
        matrix.performClickAt(1, 0);
    }
    EXPECT_EQ(seen, (Names{"box 1", "cell 1"}));
    EXPECT_EQ(matrix.stateAt(0, 0), NSOffState);
    EXPECT_THROW(static_cast<void>(matrix.stateAt(2, 0)), std::out_of_range);
}

TEST_F(AppKit, ASheetIsEndedOnceAndOnlyByItsSession) {
    NSWindow sheet(NSWindowKind::Sheet);
    NSWindow second(NSWindowKind::Sheet);
    std::vector<int> codes;
    const auto didEnd = [&codes](NSWindow* ended, int code) {
        codes.push_back(code);
        ended->orderOut();
    };
    NSApp().beginSheet(&sheet, nullptr, didEnd);
    NSApp().beginSheet(&second, nullptr, didEnd);
    EXPECT_FALSE(second.isVisible());
    sheet.close();
    EXPECT_EQ(NSApp().attachedSheet(), &sheet);
    NSApp().endSheet(&second, 1);
    NSApp().endSheet(&sheet, 0);
    NSApp().endSheet(&sheet, 0);
    EXPECT_EQ(codes, std::vector<int>{0});
    EXPECT_FALSE(sheet.isVisible());
}

TEST_F(AppKit, ClosingTheMainWindowEndsTheApplicationOnceWithoutConfirmingASheet) {
    Recorder delegate;
    NSWindow main;
    NSWindow panel(NSWindowKind::Panel);
    NSWindow sheet(NSWindowKind::Sheet);
    panel.setTitle("About");
    panel.setDelegate(&delegate);
    NSApp().setDelegate(&delegate);
    NSApp().finishLaunching();
    NSApp().finishLaunching();
    main.makeKeyAndOrderFront();
    panel.makeKeyAndOrderFront();
    NSApp().beginSheet(&sheet, &main,
                       [&delegate](NSWindow*, int) { delegate.told.emplace_back("sheet ended"); });
    panel.becomeKey();
    main.close();
    NSApp().terminate();
    EXPECT_EQ(delegate.told, (Names{"launched", "About key", "About not key", "About key", "will terminate",
                                    "About not key"}));
    EXPECT_TRUE(NSApp().isTerminated());
    EXPECT_FALSE(panel.isVisible() || sheet.isVisible());
    NSApp().setDelegate(nullptr);
}

TEST_F(AppKit, AnExceptionFromAnActionIsLoggedAndTheNextEventRuns) {
    bool ran = false;
    NSApp().dispatch([] { throw std::out_of_range("piece 3"); });
    NSApp().dispatch([] { throw 1; });
    NSApp().dispatch([&ran] { ran = true; });
    ASSERT_EQ(host.log.size(), 2U);
    EXPECT_NE(host.log.front().find("piece 3"), std::string::npos);
    EXPECT_TRUE(ran);
}

TEST_F(AppKit, AnAlertFormatsItsMessageAndReturnsTheButton) {
    host.answerAlert("Delete", "Yes");
    EXPECT_EQ(NSRunAlertPanel("Delete", "Really %@?", "No", "Yes", std::nullopt, "all"),
              NSAlertAlternateReturn);
    EXPECT_EQ(host.alerts.back().message, "Really all?");
}

TEST_F(AppKit, APageChangeIsNotifiedOnceAndThePageMustExist) {
    Recorder delegate;
    NSTabView tabs;
    tabs.setDelegate(&delegate);
    tabs.addTabViewItem("One");
    tabs.addTabViewItem("Two");
    tabs.selectTabViewItemAtIndex(0);
    tabs.selectTabViewItemAtIndex(1);
    EXPECT_EQ(delegate.told, Names{"page 1"});
    EXPECT_THROW(tabs.selectTabViewItemAtIndex(2), std::out_of_range);
}

TEST_F(AppKit, CreditsAreReadAsStyledRuns) {
    const auto text =
        platform::readRichText("{\\rtf1{\\fonttbl{\\f0 Font;}}{\\*\\x hidden}\\qc\\fs28\\b Hi\\b0\\par\n"
                               "\\'80 {\\i a\\{b\\}}\\u8212?\\uc2\\u-10179 ab\\u-8704 abz\\tab\\unknown7 .}");
    ASSERT_TRUE(text);
    ASSERT_EQ(text->size(), 4U);
    EXPECT_EQ(text->at(0).text, "Hi");
    EXPECT_TRUE(text->at(0).bold);
    EXPECT_EQ(text->at(0).size, 14);
    EXPECT_EQ(text->at(0).alignment, platform::TextAlignment::Center);
    EXPECT_EQ(text->at(1).text, "\n€ ");
    EXPECT_FALSE(text->at(1).bold);
    EXPECT_EQ(text->at(2).text, "a{b}");
    EXPECT_TRUE(text->at(2).italic);
    EXPECT_EQ(text->at(3).text, "—😀z\t.");
    for (const char* fault : {"", "plain", "{\\rtf1 open", "{\\rtf1 {x}", "{\\rtf1 \\", "{\\rtf1 \\'8"}) {
        EXPECT_FALSE(platform::readRichText(fault)) << fault;
    }
}

TEST(SilentPresenter, PressesTheButtonThatChangesNothingAtTheStart) {
    platform::SilentPresenter presenter;
    EXPECT_EQ(presenter.runAlert({"Update?", "", "Yes", "No", std::nullopt}),
              platform::AlertAnswer::Alternate);
    EXPECT_EQ(presenter.runAlert({"Failed", "", "OK", std::nullopt, std::nullopt}),
              platform::AlertAnswer::Default);
    EXPECT_FALSE(presenter.runOpenPanel({}));
    EXPECT_FALSE(presenter.runAdministratorDialog({}));
}

} // namespace
