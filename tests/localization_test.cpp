// Every text is looked up in the table of its language. Also, what depends on the version of the system or on
// the list of Brindle's versions.

#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/StringTable.h"
#include "support/AppFixture.h"
#include "support/LoopbackServer.h"

#include <set>

namespace {

const std::string mark = "«";

std::string marked(const std::string& text) {
    return mark + text + "»";
}

std::string withoutMarks(std::string text) {
    for (const char* each : {"«", "»"}) {
        for (std::size_t at = 0; (at = text.find(each)) != std::string::npos;) {
            text.erase(at, 2);
        }
    }
    return text;
}

bool isMarked(const std::string& text) {
    return text.empty() || text.find(mark) != std::string::npos;
}

/// Returns the project's own table with a mark around each text: a shown text without a mark was not looked
/// up, or is missing from the table.
platform::StringTable markedTable() {
    const TestHost plain;
    const auto file =
        contentsOfFile(NSBundle::mainBundle().resourcePath() + "/English.lproj/Localizable.strings");
    platform::StringTable table = platform::readStringTable(file.valueOr("")).valueOr({});
    for (auto& [key, text] : table) {
        text = marked(text);
    }
    return table;
}

TestHost::Options inTheMarkedLanguage(std::optional<std::int32_t> systemVersion) {
    const platform::StringTable table = markedTable();
    return {.strings = {table.begin(), table.end()}, .realResources = true, .systemVersion = systemVersion};
}

class Translation : public AppFixture {
  protected:
    explicit Translation(std::optional<std::int32_t> systemVersion = 0x1040)
        : AppFixture(inTheMarkedLanguage(systemVersion)) {}

    void answer(const std::string& title, const std::string& button) {
        host.answerAlert(marked(title), marked(button));
        expectedAlerts_.insert(marked(title));
    }

    /// Expects marks in all texts of all alerts so far, and no alerts except those that were answered.
    void expectMarkedAlerts() {
        std::set<std::string> seen;
        for (const platform::Alert& alert : host.alerts) {
            seen.insert(alert.title);
            for (const std::string& shown :
                 {alert.title, alert.message, alert.defaultButton, alert.alternateButton.value_or(""),
                  alert.otherButton.value_or("")}) {
                EXPECT_TRUE(isMarked(shown)) << alert.title << ": " << shown;
            }
        }
        EXPECT_EQ(seen, expectedAlerts_);
    }

    /// Expects marks in every text below `node` that is not the computer's data.
    void expectMarked(const platform::InterfaceNode& node) {
        for (const char* attribute : {"title", "text", "label", "toolTip", "placeholder", "confirm", "empty",
                                      "beginTitle", "another", "spoken"}) {
            EXPECT_TRUE(isMarked(node.attribute(attribute)))
                << node.line << ": " << node.attribute(attribute);
        }
        for (const std::string& shown : textsOf(node.element.get())) {
            EXPECT_TRUE(isMarked(shown)) << node.line << ": " << shown;
        }
        for (const auto& child : node.children) {
            expectMarked(*child);
        }
    }

    void launch() {
        load();
        controller->applicationDidFinishLaunching();
    }

  private:
    /// Returns the texts that the program has put into a control. A field that a user edits has data, and so
    /// have the version and the name of a share.
    static std::vector<std::string> textsOf(const platform::Element* element) {
        static const std::set<std::string> data = {"version", "selectedShareName", "versionField",
                                                   "appNameField", "copyrightField"};
        if (const auto* button = dynamic_cast<const NSButton*>(element)) {
            return {button->title()};
        }
        if (const auto* window = dynamic_cast<const NSWindow*>(element)) {
            return {window->title()};
        }
        const auto* field = dynamic_cast<const NSTextField*>(element);
        if (field != nullptr && !field->isEditable() && !data.contains(field->name())) {
            return {field->stringValue()};
        }
        return {};
    }

    std::set<std::string> expectedAlerts_;
};

TEST_F(Translation, CoversEveryTextOfTheWindowsAndTheFirstLaunch) {
    addUser("alice", "501");
    addGroup("staff", "20", {"alice"});
    addShare("Docs", "/shares/docs");
    nicl({"-create", "/config/Brindle/Old"});
    host.write("etc/smb.conf", "stray\n[Docs]\n[broken\nnovalue\ncomment = \\\n");
    answer("Shares Are Not Updated for Jaguar", "Yes");
    answer("Create Share Failed", "OK");
    answer("Shares Updated for Jaguar", "OK");
    answer("Donation", "Cancel");
    host.onRun = [this](const RecordedRun& run) {
        return run.text().find("/Old afp_shared") != std::string::npos ? TestHost::RunAnswer{"no room", 0}
                                                                       : carryOut(run);
    };
    launch();
    expectMarkedAlerts();
    expectMarked(interface->root());
    for (const char* loss :
         {"stands outside a section", "is a broken section header", "has no name or no value",
          "ends in a backslash that makes the server take in the line saved after it"}) {
        EXPECT_NE(text("smbConfNotice").find(marked(loss)), std::string::npos) << text("smbConfNotice");
    }
    EXPECT_EQ(columnOf("normalTableView", "Inherit").at(0), marked("No"));
    EXPECT_EQ(columnOf("userTableView", "Public Shared").at(0), marked("NO"));

    for (const auto& [menu, first] :
         {std::pair("owner", "alice"), {"group", "staff"}, {"groupPopUp", "staff"}}) {
        EXPECT_EQ(control<NSPopUpButton>(menu).itemTitles(), std::vector<std::string>{first}) << menu;
        EXPECT_EQ(control<NSPopUpButton>(menu).indexOfSelectedItem(), 0) << menu;
    }

    for (const auto& [first, second] : {std::pair("a", "b"), {"", ""}}) {
        control<NSTextField>("passwordSecureText1").setStringValue(first);
        control<NSTextField>("passwordSecureText2").setStringValue(second);
        send("setPassword:");
        EXPECT_TRUE(isMarked(text("passwordErrorText"))) << text("passwordErrorText");
    }
    for (const char* table : {"normalTableView", "userTableView", "groupTableView"}) {
        control<NSTableView>(table).selectRow(0);
    }
    send("toggleAuthorization:");
    expectMarked(interface->root());

    send("showAboutBox:");
    expectMarked(host.loadedInterface->root());
}

TEST_F(Translation, CoversEveryAlertAboutSharesAndAccounts) {
    addUser("alice", "501");
    addUser("adam", "502");
    addGroup("friends", "501", {"alice"});
    addGroup("admin", "80", {"adam"});
    start();
    control<NSPopUpButton>("groupPopUp").selectItemAtIndex(0);
    host.onRun = [](const RecordedRun&) { return TestHost::RunAnswer{"no room", 0}; };
    using Pairs = std::vector<std::pair<const char*, const char*>>;

    struct Situation {
        Pairs controls; ///< a field and its text, or a table and the name in the selected row
        const char* operation;
        Pairs answers;
    };

    const std::pair newUser("Confirm Add New File Sharing Only User", "Yes");
    const std::pair newGroup("Confirm Add New Group", "Yes");
    for (const Situation& each : std::vector<Situation>{
             {{}, "createShare:", {{"Share Name Empty", "OK"}}},
             {{{"shareName", "Docs"}}, "createShare:", {{"Directory Empty", "OK"}}},
             {{{"directory", "/d"}}, "createShare:", {{"Create Share Failed", "OK"}}},
             {{{"shareName", "global"}}, "createShare:", {{"Illegal Share Name", "OK"}}},
             {{{"shareName", "homes"}}, "createShare:", {{"Illegal Share Name", "OK"}}},
             {{}, "deleteAllShares:", {{"Confirm Delete All Shares", "No"}}},
             {{}, "addNewUser:", {newUser, {"User Fields Empty", "OK"}}},
             {{{"shortName", "bob"}, {"fullName", "B"}, {"uid", "501"}},
              "addNewUser:",
              {newUser, {"UID is Not Unique", "No"}}},
             {{{"shortName", "alice"}}, "addNewUser:", {{"Confirm Update User", "No"}}},
             {{{"shortName", "adam"}}, "addNewUser:", {{"Confirm Update Admin User", "No"}}},
             {{}, "addNewGroup:", {newGroup, {"Group Fields Empty", "OK"}}},
             {{{"groupName", "others"}, {"gid", "501"}},
              "addNewGroup:",
              {newGroup, {"GID is Not Unique", "No"}}},
             {{{"groupTableView", "friends"}}, "addNewGroup:", {{"Confirm Update Group", "No"}}},
             {{}, "deleteSelectedGroup:", {{"Confirm Delete Selected Group", "No"}}},
             {{{"userTableView", "alice"}}, "deleteSelectedUser:", {{"Confirm Delete Selected User", "No"}}},
             {{{"userTableView", "adam"}},
              "deleteSelectedUser:",
              {{"Admin Users Cannot Be Deleted", "Cancel"}}}}) {
        for (const auto& [name, text] : each.controls) {
            if (auto* field = dynamic_cast<NSTextField*>(interface->find(name))) {
                field->setStringValue(text);
            } else {
                selectRow(control<NSTableView>(name),
                          std::string(name).starts_with("group") ? "Group" : "User", text);
            }
        }
        for (const auto& [title, button] : each.answers) {
            answer(title, button);
        }
        send(each.operation);
    }
    expectMarkedAlerts();
}

TEST_F(Translation, CoversEveryAlertAboutTheServersSettings) {
    host.write("Library/Preferences/com.apple.AppleFileServer.plist",
               "<plist version=\"1.0\"><dict/></plist>");
    start();
    const auto save = [this] {
        answer("AppleFileServer.plist Write Unsuccessful", "OK");
        answer("smb.conf Write Unsuccessful", "OK");
        send("updateAFSProperties:");
        send("updateSMBProperties:");
    };
    // First the copy fails; then it removes the temporary file, so that the removal fails; then nothing can
    // be written.
    host.onRun = [](const RecordedRun&) { return TestHost::RunAnswer{"no room", 0}; };
    save();
    host.onRun = [](const RecordedRun& run) {
        if (run.tool == "/bin/cp") {
            std::filesystem::remove(run.arguments.at(0));
        }
        return TestHost::RunAnswer{};
    };
    save();
    std::filesystem::remove_all(host.home());
    save();
    expectMarkedAlerts();
    std::set<std::string> messages;
    for (const platform::Alert& alert : host.alerts) {
        messages.insert(alert.message);
    }
    EXPECT_EQ(messages.size(), 6U) << "each failure has its own message";
}

struct ListCase {
    const char* name;
    std::string response; ///< the response of the server with the version list
    const char* title;
    const char* button;
    const char* message; ///< a part of the marked message
    bool opensPage;
};

void PrintTo(const ListCase& list, std::ostream* stream) {
    *stream << list.name;
}

/// Brindle 2.0, with a version list on the test's own server.
class VersionCheck : public Translation, public testing::WithParamInterface<ListCase> {};

TEST_P(VersionCheck, SaysWhatTheListSays) {
    const LoopbackServer server(GetParam().response);
    host.write("resources/Info.plist",
               "<plist version=\"1.0\"><dict><key>CFBundleVersion</key><string>2.0</string>"
               "<key>BRHomePage</key><string>http://home.example/</string>"
               "<key>BRVersionList</key><string>" +
                   server.address() + "</string></dict></plist>");
    start();
    answer(GetParam().title, GetParam().button);
    send("checkForNewVersion:");
    expectMarkedAlerts();
    ASSERT_EQ(host.alerts.size(), 1U);
    EXPECT_NE(host.alerts[0].message.find(GetParam().message), std::string::npos) << host.alerts[0].message;
    EXPECT_EQ(host.alerts[0].alternateButton.has_value(), std::string(GetParam().title).starts_with("A New"));
    EXPECT_EQ(host.opened, GetParam().opensPage ? std::vector<std::string>{"http://home.example/"}
                                                : std::vector<std::string>{});
}

std::string listOf(const std::string& version) {
    return response("200 OK", "<plist version=\"1.0\"><dict><key>Other</key><string>7</string>"
                              "<key>Brindle</key><string>" +
                                  version + "</string></dict></plist>");
}

constexpr const char* offer =
    "«A new version of Brindle is available (version 1.9). Would you like to download "
    "the new version now?»";

INSTANTIATE_TEST_SUITE_P(
    Of, VersionCheck,
    testing::Values(
        ListCase{"TheRunningVersion", listOf("2.0"), "Your Software is up-to-date", "OK",
                 "«You have the most recent version of Brindle.»", false},
        ListCase{"AnyOtherVersion", listOf("1.9"), "A New Version is Available", "OK", offer, true},
        ListCase{"AVersionThatIsDeclined", listOf("2.0.0"), "A New Version is Available", "Cancel", "2.0.0",
                 false},
        ListCase{"AServerThatRefuses", response("404 Not Found", ""), "Version Not Checked", "OK",
                 "«the server answered with status 404»", false},
        ListCase{"ADocumentThatIsNoList", response("200 OK", "<html>100% wrong</html>"),
                 "Version Not Checked", "OK", " is not a version list»", false},
        ListCase{"AListWithoutBrindle", response("200 OK", "<plist version=\"1.0\"><dict/></plist>"),
                 "Version Not Checked", "OK", " does not name Brindle»", false}),
    [](const auto& test) { return test.param.name; });

class OldSystem : public Translation {
  protected:
    OldSystem() : Translation(0x1039) {}
};

TEST_F(OldSystem, EndsBrindleBeforeAnyOtherStep) {
    const std::string title = "Incorrect Mac OS X Version";
    const std::string page = NSBundle::mainBundle().objectForInfoDictionaryKey("BRHomePage");
    answer(title, "Quit Brindle");
    launch();
    EXPECT_EQ(host.events, (std::vector<std::string>{"alert " + marked(title), "terminate"}));
    EXPECT_EQ(NSUserDefaults::standardUserDefaults().integerForKey("BrindleDonationReminder"), std::nullopt);
    expectMarkedAlerts();
    EXPECT_EQ(withoutMarks(host.alerts.front().message),
              "Version " + NSBundle::mainBundle().objectForInfoDictionaryKey("CFBundleVersion") +
                  " of Brindle is only compatible with Mac OS X 10.4 and later.  Please visit " + page +
                  " to download a version of Brindle compatible with your version of Mac OS X.");
}

TEST_F(OldSystem, ShowsThePageAndEndsBrindleWhenAskedTo) {
    const std::string title = "Incorrect Mac OS X Version";
    answer(title, "Go to Webpage and Quit Brindle");
    launch();
    EXPECT_EQ(host.events,
              (std::vector<std::string>{
                  "alert " + marked(title),
                  "open " + NSBundle::mainBundle().objectForInfoDictionaryKey("BRHomePage"), "terminate"}));
}

class UnknownSystem : public Translation {
  protected:
    UnknownSystem() : Translation(std::nullopt) {}
};

TEST_F(UnknownSystem, IsALaunchLikeAnyOther) {
    start();
    EXPECT_TRUE(host.alerts.empty());
}

} // namespace
