// What stands around the front-ends: the options, the printed table, the program's exit statuses, and what
// the main interface file promises to scripts.

#include "frontends/Options.h"
#include "frontends/SilentPresenter.h"
#include "frontends/TableText.h"
#include "frontends/script/ControlState.h"
#include "frontends/script/ScriptWords.h"
#include "platform/foundation/NSFileManager.h"
#include "support/AppFixture.h"
#include "support/Subprocess.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>

namespace {

TEST(TableText, AlignsByWhatATerminalShowsAndLeavesHiddenColumnsOut) {
    struct Source : NSTableViewDataSource {
        int numberOfRowsInTableView(NSTableView* /*table*/) override { return 3; }

        std::string tableViewObjectValueForTableColumn(NSTableView* /*table*/, const NSTableColumn& column,
                                                       int row) override {
            const std::array names = {"日本", "e\xCC\x81\x1B[31m", "\xFF"};
            return column.identifier == "n" ? names.at(static_cast<std::size_t>(row)) : row == 1 ? "" : "x";
        }
    } source;

    const TestHost test;
    NSTableView table;
    table.addTableColumn({"n", "Name", 10, false});
    table.addTableColumn({"h", "Hidden", 10, true});
    table.addTableColumn({"v", "Value", 10, false});
    table.setDataSource(&source);
    table.reloadData();
    EXPECT_EQ(frontend::tableText(table),
              "Name    Value\n日本    x\ne\xCC\x81\xEF\xBF\xBD[31m\n\xEF\xBF\xBD       x\n");
}

TEST(Options, AreUnderstood) {
    using frontend::Mode;
    const auto parsed = [](std::vector<std::string> arguments) { return frontend::parseOptions(arguments); };
    EXPECT_EQ(parsed({}).mode, Mode::Window);
    EXPECT_EQ(parsed({"--script", "-"}).script, "-");
    EXPECT_EQ(parsed({"--root=a=b", "--print=groups"}).root, "a=b");
    EXPECT_EQ(parsed({"--print", "users"}).table, frontend::PrintedTable::Users);
    EXPECT_EQ(parsed({"--serve", "--port", "65535"}).port, 65535);
}

TEST(Options, ThatMakeNoSenseAreNamed) {
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{"--colour"}, "unknown option --colour"},
        {{"script"}, "\"script\" is not an option"},
        {{"--script"}, "--script needs a value after it"},
        {{"--root="}, "--root needs a value after it"},
        {{"--help=no"}, "--help takes no value"},
        {{"--print", "all"}, "--print takes shares, users or groups, not \"all\""},
        {{"--print", "users", "--script", "-"}, "--print and --script cannot be done in one run"},
        {{"--root", "a", "--system"}, "--root and --system contradict each other"},
        {{"--system", "--serve"}, "--serve is for an embedded root: --system has a server of its own"},
        {{"--root", "a", "--root", "a"}, "--root is given twice"},
        {{"--port", "1"}, "--port is the port of --serve, which is missing"},
        {{"--serve", "--port", "0"}, "--port takes a number from 1 to 65535, not \"0\""},
        {{"--serve", "--port", "12x"}, "--port takes a number from 1 to 65535, not \"12x\""},
        {{"--serve", "--print", "users"},
         "--serve lasts as long as the window or a script: it cannot go with --print"},
    };
    for (const auto& [arguments, message] : cases) {
        try {
            static_cast<void>(frontend::parseOptions(arguments));
            ADD_FAILURE() << "accepted: " << message;
        } catch (const frontend::OptionsError& error) {
            EXPECT_STREQ(error.what(), message);
        }
    }
}

TEST(SilentPresenter, PressesTheButtonThatChangesNothing) {
    frontend::SilentPresenter presenter;
    EXPECT_EQ(presenter.runAlert({"Update?", "", "Yes", "No", std::nullopt}),
              platform::AlertAnswer::Alternate);
    EXPECT_EQ(presenter.runAlert({"Failed", "", "OK", std::nullopt, std::nullopt}),
              platform::AlertAnswer::Default);
    EXPECT_FALSE(presenter.runOpenPanel({}));
    EXPECT_FALSE(presenter.runAdministratorDialog({}));
}

/// The main window as the interface file describes it, before anything is filled in.
class MainInterface : public AppFixture {};

TEST_F(MainInterface, HasTheFirstValuesThatScriptsRelyOn) {
    load();
    for (const char* line :
         {"drawer closed", "mainTabView 0", "afsPropsPage 0 \"General\"", "smbPropsPage 0 \"General\"",
          "owner 0 \"Item1\"", "group 0 \"Item1\"", "groupPopUp 0 \"Item1\"", "sharingAFS 0 \"Not Shared\"",
          "smbSecurity 0 \"User\"", "smbCodePage 0 \"437 (United States)\"", "showSystemUsersGroups off",
          "showSystemUsersGroups2 off", "showSystemUsersGroups3 off", "idleDisconnectUsers off off off off",
          "loggingAttributes1 off off", "passwordWindow hidden", "mainWindow hidden \"Brindle\"",
          "normalTableView 0 rows, selected none"}) {
        const std::string name = std::string(line).substr(0, std::string_view(line).find(' '));
        ASSERT_NE(interface->find(name), nullptr) << name;
        EXPECT_EQ(frontend::describeState(*interface->find(name)), line);
    }
    EXPECT_EQ(frontend::describeItems(control<NSPopUpButton>("smbSecurity")),
              "smbSecurity[0] \"User\" tag=0\nsmbSecurity[1] \"Share\" tag=0");
    const auto& codePages = control<NSPopUpButton>("smbCodePage");
    EXPECT_EQ(codePages.items().front().tag, 437);
    EXPECT_GE(codePages.indexOfItemWithTag(850), 0);
}

TEST_F(MainInterface, HasTheColumnsAndTheWiringThatScriptsRelyOn) {
    load();
    const std::map<std::string, std::string> columns = {
        {"normalTableView", "ShareName AFPShared AFPName DirectoryPath Owner Group Everyone AFS Inherit "
                            "InheritOwner SMB SMBGuestAccess "},
        {"userTableView", "User \"Public Shared\" UID \"Full Name\" GID "},
        {"groupTableView", "GID Group \"Users in Group\" "},
        {"groupUsersTableView", "User "}};
    for (const auto& [table, expected] : columns) {
        std::string identifiers;
        for (const NSTableColumn& column : control<NSTableView>(table).tableColumns()) {
            identifiers += frontend::scriptWord(column.identifier) + ' ';
        }
        EXPECT_EQ(identifiers, expected) << table;
    }
    const std::map<std::string, std::string> wiring = {
        {"shareName", "updateCreateShareButton:"},
        {"shortName", "updateAddUserButton:"},
        {"groupName", "updateAddGroupButton:"},
        {"inheritPermissionsButton", "updateInheritButtons:"},
        {"smbShareHomeDirs", "changeSMBHomeSharing:"},
        {"idleDisconnectEnable", "changeIdleDisconnectEnable:"},
        {"loggingEnable", "changeLoggingEnable:"},
        {"showSystemUsersGroups", "updateUsersGroupsList:"},
        {"showSystemUsersGroups2", "updateGroupsList:"},
        {"showSystemUsersGroups3", "refreshGroupList:"},
        {"afsPropsPage", "changeAFSPropsTabView:"},
        {"smbPropsPage", "changeSMBPropsTabView:"}};
    for (const auto& [name, operation] : wiring) {
        EXPECT_EQ(control<NSControl>(name).action().operation, operation) << name;
    }
}

/// The program on a root of its own, started as people start it.
class Program : public testing::Test {
  protected:
    [[nodiscard]] std::vector<std::string> environment() const {
        return {"HOME=" + test_.home().string(), "XDG_CONFIG_HOME=", "LC_ALL=C",
                "BRINDLE_ROOT=" + (test_.root() / "computer").string()};
    }

    [[nodiscard]] Finished run(std::vector<std::string> arguments, const std::string& input = {}) const {
        arguments.insert(arguments.begin(), BRINDLE_PROGRAMS "/brindle");
        return runProgram(arguments, input, environment());
    }

    [[nodiscard]] std::string script(const std::string& commands) const {
        const Finished finished = run({"--script", "-"}, commands);
        EXPECT_EQ(finished.errors, "");
        EXPECT_EQ(finished.status, 0);
        return finished.output;
    }

    /// Makes a record of the directory as an administrator does in a terminal.
    void addRecord(const std::string& path, const std::map<std::string, std::string>& properties) const {
        std::vector<std::vector<std::string>> operations = {{}};
        for (const auto& [property, value] : properties) {
            operations.push_back({property, value});
        }
        for (const std::vector<std::string>& operation : operations) {
            std::vector<std::string> command = {BRINDLE_PROGRAMS "/nicl", ".", "-create", path};
            command.insert(command.end(), operation.begin(), operation.end());
            ASSERT_EQ(runProgram(command, {}, environment()).output, "");
        }
    }

    [[nodiscard]] bool isLaunchCounted() const {
        return std::filesystem::exists(test_.home() / ".config/brindle/defaults.plist");
    }

    TestHost test_;
};

TEST_F(Program, SaysWhatIsWrongAndEndsWithTheStatusForIt) {
    const std::string folder = test_.root().string();

    struct Case {
        std::vector<std::string> arguments;
        int status;
        std::string output; ///< begins so
        std::string errors; ///< begins so
    };

    const Case cases[] = {
        {{"--help"}, 0, "usage: brindle ", ""},
        {{"--version"}, 0, "Brindle ", ""},
        {{"--print", "groups"}, 0, "Group ID  Group  ", ""},
        {{"--colour"}, 2, "", "brindle: unknown option --colour\nusage: "},
        {{"--script", folder + "/none"},
         1,
         "",
         "brindle: the script " + folder + "/none cannot be read: No such file or directory\n"},
        {{"--script", folder}, 1, "", folder + ":1: the script cannot be read further\n"},
        {{"--root", "/dev/null/x", "--print", "users"}, 1, "", "brindle: cannot make /dev/null/x: "},
    };
    for (const Case& each : cases) {
        const Finished finished = run(each.arguments);
        EXPECT_EQ(finished.status, each.status) << each.arguments.back();
        EXPECT_TRUE(finished.output.starts_with(each.output)) << finished.output;
        EXPECT_TRUE(finished.errors.starts_with(each.errors)) << finished.errors;
        EXPECT_TRUE(each.output.empty() ? finished.output.empty() : finished.errors.empty());
    }
    for (const std::string option : {"--script -", "--print users", "--help", "--version"}) {
        const Finished full =
            runProgram({"/bin/sh", "-c", BRINDLE_PROGRAMS "/brindle " + option + " >/dev/full"},
                       "start\nshow drawer\n", environment());
        EXPECT_EQ(full.status, 1) << option;
        EXPECT_TRUE(full.errors.ends_with(": standard output cannot be written\n")) << full.errors;
    }
}

TEST_F(Program, RefusesAnInterfaceFileThatLacksAnOutlet) {
    const std::string resources = (test_.root() / "resources").string();
    std::string xml = contentsOfFile(NSBundle::mainBundle().resourcePath() + "/MainMenu.xml").bytes.value();
    const std::string outlet = " outlet=\"authLabel\"";
    ASSERT_NE(xml.find(outlet), std::string::npos);
    xml.erase(xml.find(outlet), outlet.size());
    test_.write("resources/MainMenu.xml", xml);
    test_.write("resources/Info.plist", "<plist version=\"1.0\"><dict/></plist>");
    std::vector<std::string> variables = environment();
    variables.push_back("BRINDLE_RESOURCES=" + resources);
    const Finished finished = runProgram({BRINDLE_PROGRAMS "/brindle", "--print", "users"}, {}, variables);
    EXPECT_EQ(finished.status, 1);
    EXPECT_EQ(finished.errors,
              "brindle: " + resources +
                  "/MainMenu.xml:4: outlets of the class \"BRController\" are missing: \"authLabel\"\n");
}

TEST_F(Program, PrintsWithoutCountingALaunchOrChangingWhatAnAlertAsksAbout) {
    ASSERT_EQ(run({"--print", "users"}).status, 0);
    // A record of a version before Jaguar, whose name is not UTF-8.
    addRecord("/config/Brindle/caf\xE9", {{"directory_path", "/nowhere"}});
    const Finished shares = run({"--print", "shares"});
    EXPECT_NE(shares.output.find("\ncaf\xEF\xBF\xBD   /nowhere"), std::string::npos) << shares.output;
    EXPECT_EQ(shares.errors, "");
    EXPECT_FALSE(isLaunchCounted());
    const std::string output =
        script("answer Donation Cancel\nanswer \"Shares Are Not Updated for Jaguar\" No\nstart\n"
               "rows normalTableView 0\nshow shareName\n");
    EXPECT_TRUE(output.ends_with("shareName \"caf\xE9\"\nquit\n")) << output;
    EXPECT_TRUE(isLaunchCounted());
}

/// The line of the share table for a folder that does not exist.
std::string shareRow(int index, const std::string& name, const std::string& afp, const std::string& folder,
                     const std::string& inherit, const std::string& smb) {
    return std::to_string(index) + " ShareName=\"" + name + "\" AFPShared=\"" + afp + "\" AFPName=\"" + name +
           "\" DirectoryPath=\"" + folder + "\" Owner=\"\" Group=\"\" Everyone=\"\" AFS=\"" +
           (afp == "1" ? "+" : "-") + "\" Inherit=\"" + inherit + "\" InheritOwner=\"" +
           (inherit.empty() ? "" : "No") + "\" SMB=\"" + smb + "\" SMBGuestAccess=\"" +
           (smb == "+" ? "yes" : "No") + "\"\n";
}

/// A section that shares a folder with guests, and a commented-out one, as many hands have left them.
std::string handWrittenSection(const std::string& number) {
    return "\r\n# a comment with an = sign\r\n;[off" + number + "]\r\n;path = /no/off" + number +
           "\r\n\t [Section" + number +
           "]\r\n\tpath = /no/earlier\r\n#\tpath = /no/comment\r\n\t path\t= /no/tab\n  path  =\t/no/folder" +
           number + "  \r\nguest ok=yes\r\n\tguest ok = no\r\n\tpath = /no/later\n";
}

TEST_F(Program, JoinsALongHandWrittenConfigurationWithTheRecordsOfTheDirectory) {
    addRecord("/users/minor", {{"uid", "99"}, {"gid", "7101"}});
    addRecord("/users/zoe",
              {{"uid", "7101"}, {"gid", "7101"}, {"realname", "Zoë Z"}, {"sharedDir", "Public"}});
    addRecord("/groups/crew", {{"gid", "7101"}, {"users", "zoe"}});
    for (const char* number : {"30", "7", "99"}) { // two folders that have a section, and one that has none
        const std::string name = std::string("Record") + number;
        addRecord("/config/Brindle/" + name, {{"directory_path", std::string("/no/folder") + number},
                                              {"afp_shared", name == "Record7" ? "0" : "1"},
                                              {"afp_name", name},
                                              {"afp_use_parent_privs", "1"},
                                              {"afp_use_parent_owner", "0"}});
    }
    std::string configuration = "; by hand\r\n[global]\r\n\tworkgroup = OFFICE\r\n\tpath = /no/folder7\r\n"
                                "[homes]\n   path = /no/folder7\n[printers]\n\tpath = /no/folder7\r\n";
    std::string shares = shareRow(0, "Record30", "1", "/no/folder30", "Yes", "+") +
                         shareRow(1, "Record7", "0", "/no/folder7", "Yes", "+") +
                         shareRow(2, "Record99", "1", "/no/folder99", "Yes", "-");
    int rows = 3;
    for (int number = 0; number < 40; ++number) {
        const std::string text = std::to_string(number);
        configuration += handWrittenSection(text);
        if (number != 30 && number != 7) {
            shares += shareRow(rows++, "Section" + text, "0", "/no/folder" + text, "", "+");
        }
    }
    std::ofstream(test_.root() / "computer/etc/smb.conf", std::ios::binary) << configuration;

    const std::string output = script("answer Donation Cancel\nstart\nshow normalTableView userTableView "
                                      "groupTableView groupUsersTableView\n");
    const std::size_t begin = output.find("normalTableView ");
    const std::size_t users = output.find("userTableView ");
    ASSERT_NE(users, std::string::npos) << output;
    EXPECT_EQ(output.substr(begin, users - begin),
              "normalTableView " + std::to_string(rows) + " rows, selected none\n" + shares);
    for (const char* part :
         {" User=\"zoe\" \"Public Shared\"=\"YES\" UID=\"7101\" \"Full Name\"=\"Zoë Z\" GID=\"7101\"\n",
          " GID=\"7101\" Group=\"crew\" \"Users in Group\"=\"zoe\"\n", " User=\"zoe\"\n"}) {
        EXPECT_NE(output.find(part, users), std::string::npos) << part;
    }
    EXPECT_EQ(output.find("\"minor\""), std::string::npos);
}

TEST_F(Program, AsksForConsentOnceAndForgetsItAtItsEnd) {
    static_cast<void>(script("answer Cancel\nstart\n"));
    for (int run = 0; run < 2; ++run) {
        EXPECT_EQ(
            script("administrator refuse\nstart\npress lockButton\nshow lockButton authLabel\n"
                   "administrator allow\npress lockButton\nsend restartSMB:\nshow lockButton\n"),
            "administrator -> refuse\nlockButton \"\" image=lock\nauthLabel \"Click to allow changes\"\n"
            "administrator -> allow\nlockButton \"\" image=unlock\nquit\n");
    }
}

TEST_F(Program, ShowsARefusedToolRunBeforeWhatBrindleMakesOfIt) {
    const std::string output =
        script("answer Cancel\nstart\ntype shareName a]\ntype directory /nowhere\nselect sharingAFS Shared\n"
               "press createNewShare\n");
    const std::size_t run = output.find("run /usr/bin/nicl . -create /config/Brindle/a]\noutput \"nicl: ");
    ASSERT_NE(run, std::string::npos) << output;
    const std::size_t end = output.find('\n', output.find('\n', run) + 1);
    EXPECT_EQ(output.substr(end + 1, 11), "beep\nlog \"o") << output;
}

TEST_F(Program, AnswersEachCommandBeforeItReadsTheNext) {
    std::vector<std::string> command = {"/usr/bin/env"};
    for (const std::string& variable : environment()) {
        command.push_back(variable);
    }
    command.insert(command.end(), {BRINDLE_PROGRAMS "/brindle", "--script", "-"});
    Conversation brindle(command);
    EXPECT_TRUE(brindle.ask("start", "Donation").ends_with("-> \"Make Donation via Paypal\""));
    EXPECT_EQ(brindle.ask("show drawer", "drawer"), "drawer closed");
    EXPECT_EQ(brindle.ask("send toggleDrawer:\nshow drawer", "drawer"), "drawer open");
}

} // namespace
