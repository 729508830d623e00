#include "platform/foundation/NSFileManager.h"
#include "support/AppFixture.h"

#include <algorithm>
#include <ranges>
#include <tuple>

#include <sys/stat.h>

namespace {

using Texts = std::vector<std::string>;

class Shares : public AppFixture {
  protected:
    Shares() {
        host.onListing = [](const std::string& command) -> std::optional<std::string> {
            return command.find("smbd") != std::string::npos ? "310\n311\n" : "210\n";
        };
    }

    /// Makes a folder with that mode and returns its path.
    std::string folder(const std::string& name, mode_t mode = 0755) {
        const std::string path = (host.root() / name).string();
        std::filesystem::create_directories(path);
        EXPECT_EQ(::chmod(path.c_str(), mode), 0);
        return path;
    }

    /// Returns the items of the privilege menus: 0 read and write, 1 read only, 2 write only, 3 none.
    std::vector<int> privileges() {
        return {index("ownerPrivs"), index("groupPrivs"), index("everyonePrivs")};
    }

    int index(const std::string& popUp) { return control<NSPopUpButton>(popUp).indexOfSelectedItem(); }

    bool isOn(const std::string& box) { return control<NSButton>(box).state() == NSOnState; }

    NSTableView& table() { return control<NSTableView>("normalTableView"); }

    Texts recordNames() { return columnOf("normalTableView", "ShareName"); }

    /// Fills the editor as a user would.
    void fillEditor(const std::string& name, const std::string& path, bool overSMB = true) {
        type("shareName", name);
        control<NSTextField>("directory").setStringValue(path);
        control<NSPopUpButton>("sharingAFS").performSelect(1);
        control<NSPopUpButton>("sharingSMB").performSelect(overSMB ? 1 : 0);
        for (const char* menu : {"owner", "group"}) {
            control<NSPopUpButton>(menu).selectItemAtIndex(0);
        }
        for (const auto& [menu, item] :
             {std::pair("ownerPrivs", 0), {"groupPrivs", 1}, {"everyonePrivs", 3}}) {
            control<NSPopUpButton>(menu).performSelect(item);
        }
    }

    static std::string recordRun(const std::string& operation, const std::string& name) {
        return "/usr/bin/nicl . " + operation + " /config/Brindle/" + name;
    }

    Texts creationRuns(const std::string& name, const std::string& path) {
        const std::string create = recordRun("-create", name);
        return {create,
                create + " directory_path " + path,
                create + " afp_shared 1",
                create + " afp_name " + name,
                create + " afp_use_parent_privs 0",
                create + " afp_use_parent_owner 0"};
    }

    std::string copyRun() { return "/bin/cp " + (host.home() / "smb_test.conf").string() + " /etc/smb.conf"; }

    static Texts folderRuns(const std::string& path) {
        return {"/usr/sbin/chown alice:staff " + path, "/bin/chmod 751 " + path};
    }

    static Texts restartRuns() { return {"/bin/kill -1 210", "/bin/kill -1 310", "/bin/kill -1 311"}; }

    static Texts joined(const std::vector<Texts>& parts) {
        Texts all;
        for (const Texts& part : parts) {
            all.insert(all.end(), part.begin(), part.end());
        }
        return all;
    }

    void addAccounts() {
        addUser("alice", "501");
        addGroup("staff", "20", {"alice"});
    }
};

TEST_F(Shares, TheEditorShowsTheFolderOfTheSelectedShareAsItIsNow) {
    const std::string docs = folder("docs", 0644);
    addShare("Docs", docs);
    addShare("Gone", "/no/such/folder");
    nicl({"-create", "/config/Brindle/Docs", "afp_use_parent_privs", "1"});
    nicl({"-create", "/config/Brindle/Docs", "afp_use_parent_owner", "1"});
    host.write("etc/smb.conf", "[docs]\npath = " + docs + "\nguest ok = YES\n");
    start();
    EXPECT_EQ(text("selectedShareName"), "");
    table().selectRow(0);
    const auto attributes = fileAttributesAtPath(docs);
    EXPECT_EQ(text("shareName") + " " + text("directory"), "Docs " + docs);
    EXPECT_EQ(control<NSPopUpButton>("owner").titleOfSelectedItem(), attributes->ownerAccountName())
        << "an owner that is not in the menu is added to it";
    EXPECT_EQ(control<NSPopUpButton>("group").titleOfSelectedItem(), attributes->groupOwnerAccountName());
    EXPECT_EQ(privileges(), (std::vector<int>{0, 1, 1}));
    EXPECT_EQ(controller->menuToPermissions(), 0755);
    for (const char* box : {"inheritPermissionsButton", "inheritOwnerButton", "guestAccessButton"}) {
        EXPECT_TRUE(isOn(box)) << box;
    }
    EXPECT_TRUE(control<NSButton>("inheritOwnerButton").isEnabled());
    EXPECT_EQ(index("sharingAFS"), 1);
    EXPECT_EQ(index("sharingSMB"), 1);
    EXPECT_EQ(control<NSButton>("createNewShare").title(), "Update Share");
    EXPECT_EQ(text("selectedShareName"), "Docs");

    table().selectRow(1);
    EXPECT_EQ(index("owner"), -1) << "a folder that cannot be examined has no owner to show";
    EXPECT_EQ(privileges(), (std::vector<int>{3, 3, 3}));
    EXPECT_FALSE(isOn("inheritOwnerButton"));
    EXPECT_FALSE(control<NSButton>("inheritOwnerButton").isEnabled());

    table().selectRow(0);
    table().deselectAll();
    EXPECT_EQ(text("shareName") + text("directory") + text("selectedShareName"), "");
    EXPECT_EQ(index("owner"), 0);
    EXPECT_EQ(privileges(), (std::vector<int>{3, 3, 3}));
    EXPECT_EQ(index("sharingAFS") + index("sharingSMB") + isOn("inheritPermissionsButton"), 0);
    EXPECT_TRUE(isOn("inheritOwnerButton") && isOn("guestAccessButton")) << "these keep their state";
    EXPECT_FALSE(control<NSButton>("deleteButton").isEnabled());
    EXPECT_EQ(control<NSButton>("createNewShare").title(), "Create New Share");
}

TEST_F(Shares, TheButtonSaysWhetherTheTypedNameIsAnUpdate) {
    addShare("Docs", "/shares/docs");
    start();
    type("shareName", "docs");
    EXPECT_EQ(control<NSButton>("createNewShare").title(), "Create New Share");
    type("shareName", "Docs");
    EXPECT_EQ(control<NSButton>("createNewShare").title(), "Update Share");
}

TEST_F(Shares, AChosenFolderSetsTheOwnerAndPrivilegesButNotTheName) {
    const std::string drop = folder("drop", 0733);
    start();
    host.choosePath(std::nullopt);
    send("selectDirectory:");
    EXPECT_EQ(text("directory"), "");
    host.choosePath(drop);
    send("selectDirectory:");
    EXPECT_EQ(text("directory"), drop);
    EXPECT_EQ(text("shareName"), "");
    EXPECT_EQ(privileges(), (std::vector<int>{0, 2, 2}));
    EXPECT_TRUE(host.panels.at(1).canChooseDirectories);
    EXPECT_FALSE(host.panels.at(1).canChooseFiles);
}

TEST_F(Shares, AShareThatCannotBeMadeIsRefusedBeforeAnythingIsWritten) {
    addAccounts();
    start();
    for (const auto& [name, path, title] : {std::tuple("", "", "Share Name Empty"),
                                            {"Docs", "", "Directory Empty"},
                                            {"GLOBAL", "/d", "Illegal Share Name"},
                                            {"Homes", "/d", "Illegal Share Name"}}) {
        fillEditor(name, path, false);
        host.answerAlert(title, "OK");
        send("createShare:");
    }
    EXPECT_NE(host.alerts.at(2).message.find("\"Global\""), std::string::npos);
    EXPECT_NE(host.alerts.at(3).message.find("\"Homes\""), std::string::npos);
    host.rightHeld = false;
    host.administratorAllows = false;
    fillEditor(" ", "/d"); // a name of blanks is accepted
    send("createShare:");
    EXPECT_EQ(host.events.back(), "administrator refuse") << "without any alert";
    EXPECT_TRUE(host.runs.empty());
}

TEST_F(Shares, AreWrittenToTheDirectoryTheConfigurationTheFolderAndTheServersInThisOrder) {
    addAccounts();
    const std::string docs = folder("docs");
    start();
    fillEditor("Docs", docs);
    send("createShare:");
    const Texts all = joined({creationRuns("Docs", docs), {copyRun()}, folderRuns(docs), restartRuns()});
    EXPECT_EQ(host.runTexts(), all);
    EXPECT_NE(host.read("etc/smb.conf").find("[Docs]\npath = " + docs + "\nread only = No\n"),
              std::string::npos);
    EXPECT_EQ(table().selectedRow(), 0) << "the new share is selected";
    EXPECT_EQ(control<NSButton>("createNewShare").title(), "Update Share");

    host.runs.clear();
    fillEditor("Docs", docs, false);
    send("createShare:");
    EXPECT_EQ(host.runTexts(), all) << "an update makes the same runs";
    EXPECT_EQ(columnOf("normalTableView", "SMB"), Texts{"-"});

    host.runs.clear();
    send("createShare:");
    EXPECT_EQ(std::ranges::count(host.runTexts(), copyRun()), 0) << "no section, none wanted: no write";
}

TEST_F(Shares, EachCheckBoxIsWrittenWhereItBelongs) {
    addAccounts();
    start();
    for (const auto& [inherit, owner, guest] :
         {std::tuple(true, false, false), {false, true, false}, {false, false, true}}) {
        const std::string section = std::string("inherit permissions = ") + (inherit ? "Yes" : "No") +
                                    "\nguest ok = " + (guest ? "Yes" : "No") + "\n";
        SCOPED_TRACE(section);
        Texts expected = creationRuns("Docs", "/docs");
        expected[4].back() = inherit ? '1' : '0';
        expected[5].back() = owner ? '1' : '0';
        host.runs.clear();
        fillEditor("Docs", "/docs");
        for (const auto& [box, on] : {std::pair("inheritPermissionsButton", inherit),
                                      {"inheritOwnerButton", owner},
                                      {"guestAccessButton", guest}}) {
            control<NSButton>(box).setState(on ? NSOnState : NSOffState);
        }
        send("createShare:");
        Texts runs = host.runTexts();
        runs.resize(expected.size());
        EXPECT_EQ(runs, expected);
        EXPECT_NE(host.read("etc/smb.conf").find(section), std::string::npos) << host.read("etc/smb.conf");
    }
}

TEST_F(Shares, TheOwnerIsInheritedOnlyWithThePrivileges) {
    start();
    for (const bool inherits : {true, false}) {
        control<NSButton>("inheritPermissionsButton").performClick();
        EXPECT_EQ(control<NSButton>("inheritOwnerButton").isEnabled(), inherits);
    }
}

TEST_F(Shares, AFailedStepOfTheRecordRemovesTheRecordAndTheRestIsDone) {
    addAccounts();
    const std::string docs = folder("docs");
    host.write("etc/smb.conf", "[Docs]\npath = /elsewhere\n"); // a row of that name
    start();
    const Texts creation = creationRuns("Docs", docs);
    for (std::size_t failing = 0; failing < creation.size(); ++failing) {
        SCOPED_TRACE(creation[failing]);
        host.onRun = [&](const RecordedRun& run) {
            return run.text() == creation[failing] ? TestHost::RunAnswer{"no room", 0} : carryOut(run);
        };
        host.runs.clear();
        fillEditor("Docs", docs);
        host.answerAlert("Create Share Failed", "OK");
        send("createShare:");
        EXPECT_EQ(host.runTexts(),
                  joined({{creation.begin(), creation.begin() + static_cast<std::ptrdiff_t>(failing) + 1},
                          {recordRun("-delete", "Docs")},
                          folderRuns(docs),
                          restartRuns()}));
        EXPECT_EQ(columnOf("normalTableView", "AFS"), Texts{"-"});
        EXPECT_EQ(text("shareName") + text("directory"), "Docs" + docs) << "kept for another try";
    }
    EXPECT_EQ(host.alerts.back().message,
              "An Error occured while creating the share \"Docs\", please try again.");
}

TEST_F(Shares, AFailedConfigurationWriteIsShownAndTheRestIsDone) {
    addAccounts();
    const std::string docs = folder("docs");
    start();
    host.onRun = [&](const RecordedRun& run) {
        return run.tool == "/bin/cp" ? TestHost::RunAnswer{"disk full", 0} : carryOut(run);
    };
    fillEditor("Docs", docs);
    host.answerAlert("smb.conf Write Unsuccessful", "OK");
    send("createShare:");
    table().selectRow(0);
    host.answerAlert("smb.conf Write Unsuccessful", "OK");
    send("deleteShare:");
    EXPECT_EQ(host.runTexts(), joined({creationRuns("Docs", docs),
                                       {copyRun()},
                                       folderRuns(docs),
                                       restartRuns(),
                                       {recordRun("-delete", "Docs"), copyRun()},
                                       restartRuns()}));
    EXPECT_EQ(table().numberOfRows(), 0);
}

TEST_F(Shares, AFolderWithoutAKnownOwnerKeepsItsOwner) {
    addShare("Gone", "/no/such/folder");
    start();
    table().selectRow(0);
    send("createShare:");
    const Texts runs = host.runTexts();
    EXPECT_TRUE(std::ranges::count(runs, "/usr/sbin/chown : /no/such/folder"));
    EXPECT_TRUE(std::ranges::count(runs, "/bin/chmod 111 /no/such/folder"));
}

TEST_F(Shares, AMovedShareLeavesItsSectionBehindAsAShareOfItsOwn) {
    const std::string before = folder("before");
    const std::string after = folder("after");
    addShare("Docs", before);
    host.write("etc/smb.conf", "[Docs]\npath = " + before + "\n");
    start();
    table().selectRow(0);
    control<NSTextField>("directory").setStringValue(after);
    send("createShare:");
    EXPECT_EQ(recordNames(), (Texts{"Docs", "Docs"}));
    EXPECT_EQ(columnOf("normalTableView", "DirectoryPath"), (Texts{after, before}));
    EXPECT_EQ(columnOf("normalTableView", "SMB"), (Texts{"-", "+"}));
    EXPECT_EQ(table().selectedRow(), 0);

    table().selectRow(1);
    controller->rereadSMBConf();
    EXPECT_EQ(table().selectedRow(), 1) << "of two rows with one name, the one with the same folder";
    host.write("etc/smb.conf", "");
    controller->rereadSMBConf();
    EXPECT_EQ(table().selectedRow(), 0) << "the other one, as its folder may be what changed";
    host.write("etc/smb.conf", "[Docs]\npath = " + before + "\n");
    controller->rereadSMBConf();
    table().selectRow(1);
    control<NSPopUpButton>("sharingSMB").performSelect(0); // its section goes, and with it this row
    send("createShare:");
    EXPECT_EQ(recordNames(), Texts{"Docs"});
    EXPECT_EQ(table().selectedRow(), 0);
    EXPECT_EQ(text("directory"), before);
}

TEST_F(Shares, DeletingRemovesOnlyTheSelectedShare) {
    addShare("First", "/shares/first");
    addShare("Second", "/shares/second");
    host.write("etc/smb.conf", "[First]\npath = /shares/first\n[Second]\npath = /shares/second\n");
    start();
    controller->deleteShare(nullptr);
    EXPECT_TRUE(host.runs.empty()) << "no row, no share";

    table().selectRow(0);
    send("deleteShare:");
    const Texts expected = joined({{recordRun("-delete", "First"), copyRun()}, restartRuns()});
    EXPECT_EQ(host.runTexts(), expected);
    EXPECT_EQ(recordNames(), Texts{"Second"});
    EXPECT_EQ(text("selectedShareName"), "Second") << "the row stays selected and holds the next share";
    EXPECT_EQ(host.read("etc/smb.conf").find("First"), std::string::npos);
    send("deleteShare:");
    EXPECT_EQ(text("selectedShareName") + text("shareName"), "");
    EXPECT_FALSE(control<NSButton>("deleteButton").isEnabled());
    EXPECT_EQ(control<NSButton>("createNewShare").title(), "Create New Share");
}

TEST_F(Shares, DeletingAllAsksFirstAndKeepsTheConfiguration) {
    addShare("First", "/shares/first");
    addShare("Second", "/shares/second");
    host.write("etc/smb.conf", "[First]\npath = /shares/first\n");
    start();
    host.answerAlert("Confirm Delete All Shares", "No");
    send("deleteAllShares:");
    EXPECT_TRUE(host.runs.empty());
    EXPECT_EQ(host.alerts.back().defaultButton, "No");

    host.answerAlert("Confirm Delete All Shares", "Yes");
    send("deleteAllShares:");
    EXPECT_EQ(host.runTexts(), (Texts{recordRun("-delete", "Second"), recordRun("-delete", "First")}));
    EXPECT_EQ(recordNames(), Texts{"First"});
    EXPECT_EQ(columnOf("normalTableView", "AFS"), Texts{"-"});
    EXPECT_EQ(columnOf("normalTableView", "SMB"), Texts{"+"});
}

TEST_F(Shares, FromAnOlderSystemAreRewrittenOnRequestAtEachStart) {
    addShare("New", "/shares/new");
    nicl({"-create", "/config/Brindle/New", "afp_use_parent_privs", "1"});
    nicl({"-create", "/config/Brindle/Old"});
    nicl({"-create", "/config/Brindle/Old", "directory_path", "/shares/old"});
    nicl({"-create", "/config/Brindle/Old", "afp_shared", "0"}); // but it lacks an AFP name
    host.write("etc/smb.conf", "[smbonly]\npath = /shares/smb\n");
    host.answerAlert("Shares Are Not Updated for Jaguar", "No");
    start();
    interface.reset();
    EXPECT_TRUE(host.runs.empty());

    host.answerAlert("Shares Are Not Updated for Jaguar", "Yes");
    host.answerAlert("Create Share Failed", "OK");
    host.answerAlert("Shares Updated for Jaguar", "OK");
    load();
    host.onRun = [this](const RecordedRun& run) {
        return run.text() == recordRun("-create", "Old") + " afp_shared 1" ? TestHost::RunAnswer{"no room", 0}
                                                                           : carryOut(run);
    };
    controller->applicationDidFinishLaunching();
    Texts created = creationRuns("Old", "/shares/old");
    created.resize(3);
    EXPECT_EQ(host.runTexts(), joined({{recordRun("-delete", "New")},
                                       creationRuns("New", "/shares/new"),
                                       {recordRun("-delete", "Old")},
                                       created,
                                       {recordRun("-delete", "Old")}}))
        << "every record, but no share that only the SMB configuration knows";
    EXPECT_EQ(recordNames(), (Texts{"New", "Old", "smbonly"})) << "the list is not read again";
}

} // namespace
