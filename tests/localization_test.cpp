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

bool isMarked(const std::string& text) {
    return text.empty() || text.find(mark) != std::string::npos;
}

/// The project's own table with a mark around each text: a text without one was not looked up, or is missing
/// from the table.
platform::StringTable markedTable() {
    const TestHost plain;
    const auto file =
        contentsOfFile(NSBundle::mainBundle().resourcePath() + "/English.lproj/Localizable.strings");
    platform::StringTable table = platform::readStringTable(file.bytes.value());
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

    /// Every alert so far is marked in all its texts, and those that were answered are all there are.
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

    /// Every text below `node` that is not data of the computer's.
    void expectMarked(const platform::InterfaceNode& node) {
        for (const char* attribute : {"title", "text", "label", "toolTip", "placeholder", "confirm"}) {
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
    /// What a control shows that the program put there. A field that a user edits holds data, and so do the
    /// version and the name of a share.
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

TEST_F(Translation, ReachesEveryTextOfTheWindowsAndTheFirstLaunch) {
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

TEST_F(Translation, ReachesEveryAlertAboutShares) {
    start();
    for (const auto& [name, title] : {std::pair("", "Share Name Empty"),
                                      {"Docs", "Directory Empty"},
                                      {"global", "Illegal Share Name"},
                                      {"homes", "Illegal Share Name"}}) {
        control<NSTextField>("shareName").setStringValue(name);
        answer(title, "OK");
        send("createShare:");
        if (name == std::string("Docs")) {
            control<NSTextField>("directory").setStringValue("/shares/docs");
        }
    }
    host.onRun = [](const RecordedRun&) { return TestHost::RunAnswer{"no room", 0}; };
    control<NSTextField>("shareName").setStringValue("Docs");
    answer("Create Share Failed", "OK");
    send("createShare:");
    answer("Confirm Delete All Shares", "No");
    send("deleteAllShares:");
    expectMarkedAlerts();
}

TEST_F(Translation, ReachesEveryAlertAboutAccounts) {
    addUser("alice", "501");
    addUser("adam", "502");
    addGroup("friends", "501", {"alice"});
    addGroup("admin", "80", {"adam"});
    start();
    const auto fillUser = [this](const std::string& name, const std::string& id) {
        for (const auto& [field, text] : {std::pair("shortName", name), {"fullName", id}, {"uid", id}}) {
            control<NSTextField>(field).setStringValue(text);
        }
    };
    const auto confirmThenAnswer = [this](const std::string& confirmation, const std::string& title,
                                          const std::string& button, const std::string& operation) {
        answer(confirmation, "Yes");
        answer(title, button);
        send(operation);
    };
    confirmThenAnswer("Confirm Add New File Sharing Only User", "User Fields Empty", "OK", "addNewUser:");
    fillUser("bob", "501");
    control<NSPopUpButton>("groupPopUp").selectItemAtIndex(0);
    confirmThenAnswer("Confirm Add New File Sharing Only User", "UID is Not Unique", "No", "addNewUser:");
    fillUser("alice", "501");
    answer("Confirm Update User", "No");
    send("addNewUser:");
    fillUser("adam", "502");
    answer("Confirm Update Admin User", "No");
    send("addNewUser:");
    confirmThenAnswer("Confirm Add New Group", "Group Fields Empty", "OK", "addNewGroup:");
    control<NSTextField>("groupName").setStringValue("others");
    control<NSTextField>("gid").setStringValue("501");
    confirmThenAnswer("Confirm Add New Group", "GID is Not Unique", "No", "addNewGroup:");
    selectRow(control<NSTableView>("groupTableView"), "Group", "friends");
    answer("Confirm Update Group", "No");
    send("addNewGroup:");
    answer("Confirm Delete Selected Group", "No");
    send("deleteSelectedGroup:");
    selectRow(control<NSTableView>("userTableView"), "User", "alice");
    answer("Confirm Delete Selected User", "No");
    send("deleteSelectedUser:");
    selectRow(control<NSTableView>("userTableView"), "User", "adam");
    answer("Admin Users Cannot Be Deleted", "Cancel");
    send("deleteSelectedUser:");
    expectMarkedAlerts();
}

TEST_F(Translation, ReachesEveryAlertAboutTheServersSettings) {
    host.write("Library/Preferences/com.apple.AppleFileServer.plist",
               "<plist version=\"1.0\"><dict/></plist>");
    start();
    const auto save = [this](const std::string& operation, const std::string& title, int alerts) {
        for (int alert = 0; alert < alerts; ++alert) {
            answer(title, "OK");
        }
        send(operation);
    };
    const std::string afp = "AppleFileServer.plist Write Unsuccessful";
    const std::string smb = "smb.conf Write Unsuccessful";
    // The copy fails; then it takes the temporary file away, so that the removal fails; then nothing can be
    // written.
    host.onRun = [](const RecordedRun&) { return TestHost::RunAnswer{"no room", 0}; };
    save("updateAFSProperties:", afp, 1);
    save("updateSMBProperties:", smb, 1);
    host.onRun = [](const RecordedRun& run) {
        if (run.tool == "/bin/cp") {
            std::filesystem::remove(run.arguments.at(0));
        }
        return TestHost::RunAnswer{};
    };
    save("updateAFSProperties:", afp, 1);
    save("updateSMBProperties:", smb, 1);
    std::filesystem::remove_all(host.home());
    save("updateAFSProperties:", afp, 1);
    save("updateSMBProperties:", smb, 1);
    expectMarkedAlerts();
    std::set<std::string> messages;
    for (const platform::Alert& alert : host.alerts) {
        messages.insert(alert.message);
    }
    EXPECT_EQ(messages.size(), 6U) << "each failure has a message of its own";
}

class VersionTranslation : public Translation {
  protected:
    void check(const std::string& answerOfServer, const std::string& title, const std::string& button) {
        const LoopbackServer server(answerOfServer);
        host.write("resources/Info.plist",
                   "<plist version=\"1.0\"><dict><key>CFBundleVersion</key><string>2.0</string>"
                   "<key>BRVersionList</key><string>" +
                       server.address() + "</string></dict></plist>");
        start();
        answer(title, button);
        send("checkForNewVersion:");
        expectMarkedAlerts();
    }
};

TEST_F(VersionTranslation, ReachesTheReasonWhyTheVersionWasNotChecked) {
    check(response("503 Busy", ""), "Version Not Checked", "OK");
    EXPECT_NE(host.alerts.at(0).message.find(mark + "cannot fetch"), std::string::npos);
    EXPECT_NE(host.alerts.at(0).message.find(mark + "the server answered"), std::string::npos);
}

TEST_F(VersionTranslation, ReachesTheReasonWhyTheListIsOfNoUse) {
    check(response("200 OK", "nonsense"), "Version Not Checked", "OK");
    EXPECT_NE(host.alerts.at(0).message.find(mark + "the document at"), std::string::npos);
}

TEST_F(VersionTranslation, ReachesTheOfferOfANewVersion) {
    check(response("200 OK",
                   "<plist version=\"1.0\"><dict><key>Brindle</key><string>3</string></dict></plist>"),
          "A New Version is Available", "Cancel");
}

TEST_F(VersionTranslation, ReachesTheNewsThatThereIsNone) {
    check(response("200 OK",
                   "<plist version=\"1.0\"><dict><key>Brindle</key><string>2.0</string></dict></plist>"),
          "Your Software is up-to-date", "OK");
}

class OldSystemTranslation : public Translation {
  protected:
    OldSystemTranslation() : Translation(0x1039) {}
};

TEST_F(OldSystemTranslation, ReachesTheVersionAlert) {
    answer("Incorrect Mac OS X Version", "Quit Brindle");
    launch();
    expectMarkedAlerts();
}

} // namespace
