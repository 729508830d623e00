#include "frontends/script/ScriptRunner.h"
#include "frontends/script/ScriptWords.h"
#include "platform/appkit/NSAlert.h"
#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSMatrix.h"
#include "platform/appkit/NSPopUpButton.h"
#include "platform/appkit/NSTextView.h"
#include "platform/appkit/ObjectClass.h"
#include "platform/foundation/NSLog.h"
#include "support/TestHost.h"
#include "ui/KWIntegerFormatter.h"

#include <gtest/gtest.h>

#include <array>
#include <sstream>

namespace {

constexpr const char* deskFile = R"(<interface class="Desk">
  <menuBar><menu title="File"><item title="Ask" action="ask:"/><item title="Never" action="never:" enabled="no"/></menu></menuBar>
  <window name="deskWindow" title="The Desk" width="100" height="100">
    <column>
      <textField outlet="title" action="note:" delegate="yes"/>
      <textField outlet="amount" action="note:" delegate="yes"/>
      <textField name="locked" text="fixed" enabled="no"/>
      <label name="status" text="ready"/>
      <button outlet="go" title="Go" action="ask:"/>
      <button name="pick" title="Pick" action="pick:"/>
      <button name="raise" title="Raise" action="raise:"/>
      <button name="spoil" title="Spoil" action="spoil:"/>
      <button name="run" title="Run" action="run:"/>
      <checkBox name="guest" title="Guest" action="note:"/>
      <popUp name="page" action="note:"><item title="437" tag="9"/><item title="One &quot;1&quot;"/></popUp>
      <popUp outlet="empty" action="note:"/>
      <matrix name="grid" rows="2" columns="2" action="note:">
        <cell title="a"/><cell title="b"/><cell title="c"/><cell title="d"/></matrix>
      <tabView name="tabs" delegate="yes"><tab label="A"><column><textField name="deep" action="note:"/></column></tab>
        <tab label="B"><column/></tab></tabView>
      <tableView outlet="people"><column id="Name" title="Name"/><column id="Full Name" title="Whole"/>
        <column id="Secret" title="Secret" hidden="yes"/></tableView>
      <tableView outlet="many" multiple="yes"><column id="Name" title="Name"/></tableView>
      <textView name="story" height="10"/>
    </column>
    <drawer name="side"><column><checkBox name="inDrawer" title="In" action="note:"/></column></drawer>
  </window>
  <sheet outlet="password" title="Password"><column>
    <secureField name="secret" action="note:"/><button name="done" title="Done" action="done:"/></column></sheet>
  <panel outlet="about" title="About"><column><label name="credit" text="us"/></column></panel>
</interface>)";

/// The owner of one control of every kind. Its actions log what they are sent.
class Desk : public platform::OutletOwner,
             public NSApplicationDelegate,
             public NSTableViewDataSource,
             public NSTableViewDelegate,
             public NSTabViewDelegate,
             public NSTextFieldDelegate {
  public:
    void applicationDidFinishLaunching() override {
        auto formatter = std::make_shared<KWIntegerFormatter>();
        formatter->setFormat("##0");
        amount->setFormatter(std::move(formatter));
        empty->removeAllItems();
        people->reloadData();
        many->reloadData();
    }

    bool applicationShouldTerminateAfterLastWindowClosed() override { return true; }

    void applicationWillTerminate() override { NSLog("bye"); }

    int numberOfRowsInTableView(NSTableView* /*table*/) override { return 2; }

    std::string tableViewObjectValueForTableColumn(NSTableView* /*table*/, const NSTableColumn& column,
                                                   int row) override {
        return row == 0 ? "zoë" : column.identifier == "Name" ? "" : "Bob \"B\"";
    }

    void tableViewSelectionDidChange(NSTableView* table) override {
        NSLog("%@ row %d", table->name(), table->selectedRow());
    }

    void tabViewDidSelectTabViewItem(NSTabView* tabView, int index) override {
        NSLog("%@ %d", tabView->name(), index);
    }

    void controlDidFailToValidatePartialString(NSTextField*, const std::string&,
                                               const std::string&) override {
        NSBeep();
    }

    void note(NSControl* sender) { NSLog("%@\n", sender->name()); }

    void never(NSControl* /*sender*/) {}

    void ask(NSControl* /*sender*/) {
        const int first = NSRunAlertPanel("First", "Delete %@?", "No", "Yes", "Maybe", "it");
        const int second = NSRunAlertPanel("Second", "Really?\n", "OK", std::nullopt, std::nullopt);
        NSLog("%d %d", first, second);
    }

    void pick(NSControl* /*sender*/) {
        NSOpenPanel panel;
        panel.setCanChooseFiles(false);
        panel.setCanChooseDirectories(true);
        NSLog("%@", panel.runModal());
    }

    void raise(NSControl* /*sender*/) {
        about->makeKeyAndOrderFront();
        NSApp().beginSheet(password, NSApp().mainWindow(), [](NSWindow* sheet, int code) {
            sheet->orderOut();
            NSLog("sheet %d", code);
        });
    }

    void spoil(NSControl* /*sender*/) {
        title->setEnabled(false);
        go->setEnabled(false);
        many->setEnabled(false);
        throw std::out_of_range("no such piece");
    }

    void run(NSControl* /*sender*/) {
        auto& presenter = platform::Host::current().presenter();
        const bool allowed = presenter.runAdministratorDialog({}).has_value();
        const std::array<std::string, 4> arguments = {"-append", "", "a b", "#1"};
        presenter.toolWillRun("/usr/bin/nicl", arguments);
        presenter.toolDidWrite("no\n");
        NSWorkspace::openURL(allowed ? "http://a.example/" : "http://b.example/");
    }

    void done(NSControl* /*sender*/) { NSApp().endSheet(password, 1); }

    NSTextField* title = outlet("title", title);
    NSTextField* amount = outlet("amount", amount);
    NSButton* go = outlet("go", go);
    NSPopUpButton* empty = outlet("empty", empty);
    NSTableView* people = outlet("people", people);
    NSTableView* many = outlet("many", many);
    NSWindow* password = outlet("password", password);
    NSWindow* about = outlet("about", about);
};

void registerDesk() {
    platform::registerClass(platform::describeClass<Desk>("Desk")
                                .maker([] { return std::make_shared<Desk>(); })
                                .action("note:", &Desk::note)
                                .action("never:", &Desk::never)
                                .action("ask:", &Desk::ask)
                                .action("pick:", &Desk::pick)
                                .action("raise:", &Desk::raise)
                                .action("spoil:", &Desk::spoil)
                                .action("run:", &Desk::run)
                                .action("done:", &Desk::done)
                                .take());
}

struct Ran {
    int status = -1;
    std::string output;
    std::string errors;
};

Ran runScript(const std::string& script) {
    TestHost test;
    test.write("Desk.xml", deskFile);
    std::istringstream input(script);
    std::ostringstream output;
    std::ostringstream errors;
    const auto lines = std::make_shared<frontend::ScriptOutput>(output);
    const auto presenter = std::make_shared<frontend::ScriptPresenter>(lines);
    platform::Services services = test.host().services();
    services.log = std::make_shared<frontend::ScriptLog>(lines, errors, services.log);
    services.presenter = presenter;
    const platform::Host host(std::move(services));
    std::unique_ptr<platform::Interface> interface;
    frontend::ScriptRunner runner(
        "it", input, lines, presenter,
        [&] {
            registerDesk();
            interface = std::move(*platform::Interface::load((test.root() / "Desk.xml").string(), "Desk"));
            NSApp().mainWindow()->makeKeyAndOrderFront();
            NSApp().finishLaunching();
            return platform::Status();
        },
        errors);
    const int status = runner.run();
    return {status, output.str(), errors.str()};
}

struct ScriptCase {
    const char* script;
    const char* output;
};

TEST(Script, PrintsWhatAUserWouldSeeInTheOrderInWhichItHappens) {
    // Each case is run between "start" and the end of the script.
    const ScriptCase cases[] = {
        {"show title amount locked status",
         "title \"\"\namount \"\"\nlocked \"fixed\" disabled\nstatus \"ready\"\n"},
        {"show go guest page empty grid tabs side deskWindow password about story",
         "go \"Go\"\nguest off\npage 0 \"437\"\nempty none\ngrid off off off off\ntabs 0\nside closed\n"
         "deskWindow shown \"The Desk\"\npassword hidden\nabout hidden \"About\"\nstory \"\"\n"},
        {"show people", "people 2 rows, selected none\n0 Name=\"zoë\" \"Full Name\"=\"zoë\" Secret=\"zoë\"\n"
                        "1 Name=\"\" \"Full Name\"=\"Bob \\\"B\\\"\" Secret=\"Bob \\\"B\\\"\"\n"},
        {"items page\nitems empty", "page[0] \"437\" tag=9\npage[1] \"One \\\"1\\\"\" tag=0\n"},
        {"type title Docs # a comment\nappend title \" \\\"1\\\"\\n\\t\\\\\"\nshow title",
         "log \"title\\n\"\nlog \"title\\n\"\ntitle \"Docs \\\"1\\\" \\t\\\\\"\n"},
        {"type amount 007\ntype amount 1x\nappend amount 5\nshow amount\ntype amount \"\"\nshow amount",
         "log \"amount\\n\"\nrefused \"Input is not an integer\"\nbeep\nlog \"amount\\n\"\namount \"75\"\n"
         "log \"amount\\n\"\namount \"\"\n"},
        {"select page 1\nselect page 1\nselect page \"One \\\"1\\\"\"\nshow page",
         "log \"page\\n\"\nlog \"page\\n\"\nlog \"page\\n\"\npage 1 \"One \\\"1\\\"\"\n"},
        {"page tabs 1\npage tabs 1\ntype deep x\ncheck inDrawer on",
         "log \"tabs 1\"\nlog \"deep\\n\"\nlog \"inDrawer\\n\"\n"},
        {"rows people 1\nrows people 1\nrows people\nrows many 1 0 1\nshow many",
         "log \"people row 1\"\nlog \"people row -1\"\nlog \"many row 0\"\nmany 2 rows, selected 0 1\n"
         "0 Name=\"zoë\"\n1 Name=\"\"\n"},
        {"check guest on\ncheck guest on\ncheck grid 1 0 on\ncheck grid 0 0 off\nshow guest grid",
         "log \"guest\\n\"\nlog \"grid\\n\"\nguest on\ngrid off off on off\n"},
        {"press go", "alert \"First\" \"Delete it?\" \"No\" \"Yes\" \"Maybe\" -> \"No\"\n"
                     "alert \"Second\" \"Really?\\n\" \"OK\" -> \"OK\"\nlog \"1 1\"\n"},
        {"answer First Yes\nanswer Maybe\nanswer Second OK\nsend ask:\nsend ask:",
         "alert \"First\" \"Delete it?\" \"No\" \"Yes\" \"Maybe\" -> \"Yes\"\n"
         "alert \"Second\" \"Really?\\n\" \"OK\" -> \"OK\"\nlog \"0 1\"\n"
         "alert \"First\" \"Delete it?\" \"No\" \"Yes\" \"Maybe\" -> \"Maybe\"\n"
         "alert \"Second\" \"Really?\\n\" \"OK\" -> \"OK\"\nlog \"-1 1\"\n"},
        {"choose /usr\npress pick\npress pick",
         "panel folders -> /usr\nlog \"/usr\"\npanel folders -> cancel\nlog \"(null)\"\n"},
        {"press run\nadministrator refuse\nsend run:",
         "administrator -> allow\nrun /usr/bin/nicl -append \"\" \"a b\" \"#1\"\noutput \"no\\n\"\nopen "
         "\"http://a.example/\"\n"
         "administrator -> refuse\nrun /usr/bin/nicl -append \"\" \"a b\" \"#1\"\noutput \"no\\n\"\nopen "
         "\"http://b.example/\"\n"},
        {"press raise\ntype secret \"pä ß\"\nshow secret password title\npress done\nclose about",
         "window about shown\nwindow password shown\nlog \"secret\\n\"\nsecret \"****\"\npassword "
         "shown\ntitle \"\"\n"
         "window password hidden\nlog \"sheet 1\"\nwindow about hidden\n"},
        {"press spoil\nshow title go many",
         "log \"The action was given up: no such piece\"\ntitle \"\" disabled\ngo \"Go\" disabled\n"
         "many 2 rows, selected none disabled\n0 Name=\"zoë\"\n1 Name=\"\"\n"},
        {"send note:\nshow guest", "log \"title\\n\"\nguest off\n"},
        {"\tshow\ttitle#x\n \t\n#show\ntype title a\\b\nshow title",
         "title \"\"\nlog \"title\\n\"\ntitle \"a\\\\b\"\n"},
        {"type amount 12\nappend amount \xFF\nappend amount \"3 4\"\nappend amount ٣\nshow amount",
         "log \"amount\\n\"\nrefused \"Input is not an integer\"\nbeep\nrefused \"Input is not an "
         "integer\"\nbeep\nlog \"amount\\n\"\namount \"123\"\n"},
        {"press raise\nitems page\nadministrator refuse\nshow grid\nsend done:\npress raise\npress "
         "done\nclose about",
         "window about shown\nwindow password shown\npage[0] \"437\" tag=9\npage[1] \"One \\\"1\\\"\" "
         "tag=0\ngrid off off off off\nwindow password hidden\nlog \"sheet 1\"\n"
         "window password shown\nwindow password hidden\nlog \"sheet 1\"\nwindow about hidden\n"},
        {"close deskWindow", ""},
    };
    for (const ScriptCase& each : cases) {
        const Ran ran = runScript(std::string("start\n") + each.script);
        EXPECT_EQ(ran.output, std::string(each.output) + "log \"bye\"\nquit\n") << each.script;
        EXPECT_EQ(ran.errors, "") << each.script;
        EXPECT_EQ(ran.status, 0) << each.script;
    }
}

TEST(Script, StopsAtWhatAUserCouldNotDoAndSaysWhere) {
    const ScriptCase cases[] = {
        {"shout", "it:2: there is no command \"shout\""},
        {"type title", "it:2: write this command as: type OUTLET TEXT"},
        {"type title \"a", "it:2: a quote is opened and not closed"},
        {"type title \"\\x\"", "it:2: \\x stands for nothing: inside quotes write \\\", \\\\, \\n or \\t"},
        {"type title \"a\"b", "it:2: a blank is missing after a closing quote"},
        {"type title a\"b\"",
         "it:2: a quote inside a word: put the whole word in quotes and write \\\" for the quote"},
        {"answer a b c", "it:2: write this command as: answer [ALERT] BUTTON"},
        {"start", "it:2: the application has been started already"},
        {"show nothing", "it:2: there is no control or window \"nothing\""},
        {"press title", "it:2: title is not a button"},
        {"press guest", "it:2: guest is a check box: write check guest on|off"},
        {"type locked x", "it:2: locked is disabled"},
        {"type status x", "it:2: status only shows its text: nothing can be typed into it"},
        {"\npress spoil\npress go", "it:4: go is disabled"},
        {"press spoil\nrows many 0", "it:3: many is disabled"},
        {"send never:", "it:2: never: is disabled"},
        {"send fly:", "it:2: no control or menu item sends \"fly:\""},
        {"select page 2", "it:2: page has no item \"2\""},
        {"select page Two", "it:2: page has no item \"Two\""},
        {"select empty 0", "it:2: empty has no item \"0\""},
        {"page tabs 2", "it:2: tabs has no page 2"},
        {"page tabs 99999999999", "it:2: tabs has no page 99999999999"},
        {"rows people 2", "it:2: people has no row 2"},
        {"rows people 0 1", "it:2: people lets only one row be selected"},
        {"rows people -1", "it:2: \"-1\" is not a number that counts from 0"},
        {"check grid 2 0 on", "it:2: grid has no cell in row 2 and column 0"},
        {"check grid on", "it:2: grid is not a check box"},
        {"check guest maybe", "it:2: a box is checked on or off, not \"maybe\""},
        {"type secret x", "it:2: secret cannot be used: its window password is not on screen"},
        {"close about", "it:2: about is not on screen"},
        {"press raise\npress go", "it:3: go cannot be used while the sheet password is up"},
        {"press raise\nsend ask:", "it:3: ask: cannot be used while the sheet password is up"},
        {"press raise\nclose about", "it:3: about cannot be used while the sheet password is up"},
        {"press raise\npage tabs 1", "it:3: tabs cannot be used while the sheet password is up"},
        {"press raise\ncheck inDrawer on", "it:3: inDrawer cannot be used while the sheet password is up"},
        {"press raise\nundo", "it:3: a sheet is up: undo must wait until it has gone"},
        {"press raise\nreread", "it:3: a sheet is up: reread must wait until it has gone"},
        {"press raise\nclose password", "it:3: password is a sheet: only its own buttons end it"},
        {"choose here", "it:2: an open panel chooses an absolute path, and \"here\" does not begin with /"},
        {"choose /etc/passwd\npress pick", "it:2: /etc/passwd is a file and the open panel offers folders"},
        {"choose /none/such\npress pick",
         "it:2: there is nothing at /none/such for the open panel to choose"},
        {"answer Perhaps\n\npress go",
         "it:2: the alert \"First\" has no button \"Perhaps\"; it has \"No\" \"Yes\" \"Maybe\""},
        {"close deskWindow\nshow title", "it:3: the application has ended: nothing can follow"},
    };
    for (const ScriptCase& each : cases) {
        const Ran ran = runScript(std::string("start\n") + each.script);
        EXPECT_EQ(ran.errors, std::string(each.output) + '\n') << each.script;
        EXPECT_EQ(ran.status, 1) << each.script;
    }
}

TEST(Script, EndsAnActionWhoseAnswerDoesNotFitAndPrintsNothingAfterwards) {
    const Ran ran = runScript("start\nanswer Second Later\npress go\nshow title\n");
    EXPECT_EQ(ran.output, "alert \"First\" \"Delete it?\" \"No\" \"Yes\" \"Maybe\" -> \"No\"\n");
    EXPECT_EQ(ran.errors, "it:2: the alert \"Second\" has no button \"Later\"; it has \"OK\"\n");
}

TEST(Script, MayBeginWithAByteOrderMark) {
    const Ran ran = runScript("\xEF\xBB\xBFstart\ntype title \xEF\xBB\xBF\nshow title\n");
    EXPECT_EQ(ran.errors, "");
    EXPECT_EQ(ran.output, "log \"title\\n\"\ntitle \"\xEF\xBB\xBF\"\nlog \"bye\"\nquit\n");
    EXPECT_EQ(runScript("start\n\xEF\xBB\xBFquit\n").errors,
              "it:2: there is no command \"\xEF\xBB\xBFquit\"\n");
}

TEST(Script, LetsOnlyAnswersComeBeforeTheStart) {
    EXPECT_EQ(runScript("show title\n").errors, "it:1: start must come before show\n");
    EXPECT_EQ(runScript("answer Yes\nchoose /\nadministrator refuse\nshow title\n").errors,
              "it:4: start must come before show\n");
}

TEST(Script, NamesAnswersThatNothingAskedFor) {
    const Ran ran = runScript("answer First Yes\nchoose /usr\nanswer OK\r\nstart\r\nquit\r\n");
    EXPECT_EQ(ran.status, 0);
    EXPECT_EQ(ran.output, "log \"bye\"\nquit\n");
    EXPECT_EQ(ran.errors, "it:1: no alert \"First\" came for the answer \"Yes\"\n"
                          "it:2: no open panel came for /usr\n"
                          "it:3: no alert came for the answer \"OK\"\n");
}

TEST(Script, MayEndTwiceAndPrepareAnswersAfterwards) {
    const Ran ran = runScript("start\nquit\nquit\nanswer Yes\nadministrator refuse\n");
    EXPECT_EQ(ran.status, 0);
    EXPECT_EQ(ran.output, "log \"bye\"\nquit\n");
    EXPECT_EQ(ran.errors, "it:4: no alert came for the answer \"Yes\"\n");
}

TEST(Script, QuitsWithAnOpenSheetWithoutConfirmingIt) {
    EXPECT_EQ(runScript("start\npress raise\nquit").output,
              "window about shown\nwindow password shown\nlog \"bye\"\n"
              "window password hidden\nwindow about hidden\nquit\n");
}

TEST(ScriptWords, AreReadBackAsTheyWereWritten) {
    for (const std::string text :
         {"plain", "", "a b", "#x", "x\r", "say \"hi\"", "back\\slash", "two\nlines\t", "\xFFraw"}) {
        EXPECT_EQ(frontend::splitScriptLine("  x " + frontend::scriptWord(text)),
                  (std::vector<std::string>{"x", text}));
    }
    EXPECT_EQ(frontend::scriptWord("\xFFraw"), "\xFFraw");
    EXPECT_EQ(frontend::scriptWord("x#y"), "x#y") << "only a script has to quote it";
}

} // namespace
