#include "platform/foundation/NSNotificationCenter.h"
#include "privileged/NiutilTask.h"
#include "support/AppFixture.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <regex>
#include <tuple>

namespace {

using Texts = std::vector<std::string>;

const std::string counterKey = "BrindleDonationReminder";

class Launch : public AppFixture {
  protected:
    using AppFixture::AppFixture;

    [[nodiscard]] static std::string infoText(const std::string& key) {
        return NSBundle::mainBundle().objectForInfoDictionaryKey(key);
    }

    [[nodiscard]] static std::optional<std::int32_t> launchCounter() {
        return NSUserDefaults::standardUserDefaults().integerForKey(counterKey);
    }

    bool isLogged(const std::string& text) {
        return std::ranges::any_of(
            host.log, [&text](const std::string& line) { return line.find(text) != std::string::npos; });
    }

    /// Returns what the lock shows: the image's name and the label.
    std::string lock() { return control<NSButton>("lockButton").image()->name() + " " + text("authLabel"); }
};

TEST_F(Launch, ShowsTheVersionAndAnEmptyEditor) {
    start();
    for (const auto& [name, perform] : platform::findClass("BRController")->actions) {
        EXPECT_NE(interface->findWiredTo(name), nullptr) << name;
    }
    EXPECT_EQ(text("version"), infoText("CFBundleVersion"));
    EXPECT_EQ(control<NSButton>("createNewShare").title(), "Create New Share");
    EXPECT_TRUE(host.alerts.empty());
    EXPECT_FALSE(isLogged("a bug has occured"));
}

TEST_F(Launch, TheLockFollowsTheAuthorizationUntilTheEnd) {
    start();
    EXPECT_EQ(lock(), "unlock Click to disallow changes") << "a right that is still held is noticed at once";
    send("toggleAuthorization:");
    EXPECT_EQ(lock(), "lock Click to allow changes");
    EXPECT_EQ(host.administratorDialogs, 0);
    host.administratorAllows = false;
    send("toggleAuthorization:");
    EXPECT_EQ(lock(), "lock Click to allow changes");
    host.administratorAllows = true;
    NiutilTask::sharedInstance().authenticate();
    EXPECT_EQ(lock(), "unlock Click to disallow changes") << "whichever control asked";

    control<NSWindow>("mainWindow").close();
    EXPECT_TRUE(NSApp().isTerminated());
    EXPECT_FALSE(host.rightHeld);
    EXPECT_EQ(lock(), "unlock Click to disallow changes") << "the lock is no longer updated";
}

TEST_F(Launch, AListThatCannotBeReadIsLoggedAndEmptyAndTheOthersAreFilled) {
    addUser("alice", "501");
    addGroup("staff", "20");
    addShare("Docs", "/shares/docs");
    start();
    const Texts tables{"normalTableView", "userTableView", "groupTableView", "groupUsersTableView"};
    const Texts reports{"/config/Brindle name directory_path", "/users name uid sharedDir",
                        "/groups gid name users", "/users name uid sharedDir"};
    int asked = 0;
    host.onReport = [&asked] { ++asked; };
    controller->applicationDidFinishLaunching();
    const int before = asked - static_cast<int>(tables.size()); // for the menus, which are filled first
    for (std::size_t failing = 0; failing < tables.size(); ++failing) {
        SCOPED_TRACE(tables[failing]);
        int next = -before;
        host.onReport = [&next, failing] {
            if (next++ == static_cast<int>(failing)) {
                throw std::out_of_range("a piece is missing");
            }
        };
        host.log.clear();
        controller->applicationDidFinishLaunching();
        EXPECT_EQ(host.log,
                  (Texts{"If you are seeing this message a bug has occured.  Please run the following "
                         "command in the terminal and email the results to " +
                         infoText("BRSupportAddress") + ".\nnireport . " + reports[failing]}));
        for (const std::string& table : tables) {
            EXPECT_EQ(control<NSTableView>(table).numberOfRows(), table == tables[failing] ? 0 : 1) << table;
        }
    }
}

TEST_F(Launch, AFailedStepIsLoggedAndTheOthersAreDone) {
    addUser("alice", "501");
    host.write("etc/smb.conf", "[global]\nworkgroup = OFFICE\n[Docs]\npath = /shares/docs\n");
    host.write("Library/Preferences/com.apple.AppleFileServer.plist",
               "<plist version=\"1.0\"><dict><key>TCPPort</key><integer>548</integer></dict></plist>");
    load();
    const auto fail = [] { throw std::out_of_range("unexpected text"); };
    const platform::Connection port = control<NSTextField>("tcpPort").changed.connect(fail);
    const platform::Connection workGroup = control<NSTextField>("smbWorkGroup").changed.connect(fail);
    host.answerAlert("Donation", "Cancel");
    NSApp().finishLaunching();
    const std::string run = "If you are seeing this message a bug has occured.  Please ";
    EXPECT_EQ(host.log,
              (Texts{run + "run the following command in the terminal and email the results to " +
                         infoText("BRSupportAddress") + ".\nniutil -read . /config/AppleFileServer",
                     run + "email a copy of your smb.conf file located in the /etc/ directory to " +
                         infoText("BRSupportAddress") + " along with a description of the error."}));
    EXPECT_EQ(columnOf("normalTableView", "ShareName"), Texts{"Docs"});
    EXPECT_EQ(columnOf("userTableView", "User"), Texts{"alice"});
    EXPECT_EQ(launchCounter(), 1) << "the last step ran";
}

TEST_F(Launch, AHandWrittenConfigurationIsWarnedAboutLineByLine) {
    host.write("etc/smb.conf", "stray = 1\n[Docs]\npath = /shares/docs\ncomment = a \\\n  b = c\nnovalue\n");
    start();
    const std::string notice = text("smbConfNotice");
    for (const char* line : {"line 1 stands outside a section",
                             "line 4 ends in a backslash that makes the server take in the line",
                             "line 6 has no name or no value"}) {
        EXPECT_NE(notice.find(line), std::string::npos) << notice;
    }
    EXPECT_TRUE(host.alerts.empty());

    send("updateSMBProperties:");
    EXPECT_EQ(text("smbConfNotice"), "") << "after the write nothing is left to warn of";

    std::string many = "[Docs]\n";
    for (int line = 0; line < 100; ++line) {
        many += "novalue\n";
    }
    host.write("etc/smb.conf", many);
    load();
    controller->applicationDidFinishLaunching();
    EXPECT_NE(text("smbConfNotice").find(", and 88 more"), std::string::npos) << text("smbConfNotice");

    host.write("etc/smb.conf", "# all is well\n[Docs]\npath = /shares/docs\n");
    load();
    controller->applicationDidFinishLaunching();
    EXPECT_EQ(text("smbConfNotice"), "");
}

TEST_F(Launch, APartlyShownConfigurationIsWarnedAboutUntilItsSettingsAreSaved) {
    host.write("etc/smb.conf", "[global]\ndos charset = C\nserver string = not shown\n");
    start();
    const std::string notice = "Only a part of the SMB settings could be shown.";
    EXPECT_TRUE(text("smbPartNotice").starts_with(notice)) << text("smbPartNotice");
    EXPECT_NE(text("smbPartNotice").find((host.root() / "etc/smb.conf").string()), std::string::npos);

    send("revertSMBProperties:");
    EXPECT_TRUE(text("smbPartNotice").starts_with(notice)) << text("smbPartNotice");
    EXPECT_TRUE(isLogged("email a copy of your smb.conf file"));

    type("shareName", "Docs");
    control<NSTextField>("directory").setStringValue("/shares/docs");
    control<NSPopUpButton>("sharingSMB").performSelect(1);
    send("createShare:");
    EXPECT_NE(host.read("etc/smb.conf").find("[Docs]"), std::string::npos);
    EXPECT_TRUE(text("smbPartNotice").starts_with(notice)) << "writing a share changes no setting";

    send("updateSMBProperties:");
    EXPECT_EQ(text("smbPartNotice"), "");

    host.write("etc/smb.conf", "stray\n[global]\ndos charset = C\n");
    load();
    controller->applicationDidFinishLaunching();
    EXPECT_NE(text("smbConfNotice").find("line 1 stands outside a section"), std::string::npos);
    EXPECT_NE(text("smbPartNotice").find(notice), std::string::npos);
}

TEST_F(Launch, AConfigurationThatCannotBeReadIsWarnedAboutAsLongAsItIsNotSaved) {
    std::filesystem::create_directory(host.root() / "etc/smb.conf"); // it cannot be read as a file
    start();
    const std::string notice = (host.root() / "etc/smb.conf").string() +
                               " cannot be read (Is a directory), and nothing will be saved to it.  Make it "
                               "readable and start again.";
    EXPECT_EQ(text("smbConfNotice"), notice);
    host.answerAlert("smb.conf Write Unsuccessful", "OK");
    send("updateSMBProperties:");
    EXPECT_EQ(text("smbConfNotice"), notice);
}

TEST_F(Launch, TheDrawerStaysClosedAfterAnotherPageWasShown) {
    start();
    auto& drawer = control<NSDrawer>("drawer");
    auto& pages = control<NSTabView>("mainTabView");
    addShare("Docs", "/shares/docs");
    send("refreshNormalList:");
    control<NSTextField>("shareName").setStringValue("Docs");
    send("toggleDrawer:");
    EXPECT_TRUE(drawer.isOpen());
    EXPECT_EQ(control<NSButton>("createNewShare").title(), "Update Share")
        << "opening looks at the name again";
    pages.selectTabViewItemAtIndex(3);
    EXPECT_FALSE(drawer.isOpen());
    pages.selectTabViewItemAtIndex(0);
    EXPECT_FALSE(drawer.isOpen());
}

TEST_F(Launch, AKeyThatAFieldRefusesBeepsAndChangesNothing) {
    start();
    for (const char* name :
         {"uid", "gid", "tcpPort", "idleDisconnectTime", "smbNetBiosName", "smbWorkGroup"}) {
        SCOPED_TRACE(name);
        auto& field = control<NSTextField>(name);
        field.setStringValue("12");
        field.setEnabled(true);
        host.events.clear();
        const bool isName = std::string_view(name).starts_with("smb");
        EXPECT_FALSE(field.proposeEdit(isName ? "12 " : "12a", 3, {2, 0}));
        EXPECT_EQ(field.stringValue(), "12");
        EXPECT_EQ(std::ranges::count(host.events, "beep"), isName ? 2 : 1);
    }
}

TEST_F(Launch, ADonationIsAskedForAtTheFirstLaunchAndOnceMore) {
    const auto launchAgain = [this] {
        host.alerts.clear();
        load();
        controller->applicationDidFinishLaunching();
    };
    for (int launch = 1; launch <= 12; ++launch) {
        SCOPED_TRACE(launch);
        const bool asks = launch == 1 || launch == 11;
        if (asks) {
            host.answerAlert("Donation", launch == 1 ? "Make Donation via Paypal" : "Make Donation via Kagi");
        }
        launchAgain();
        EXPECT_EQ(host.alerts.size(), asks ? 1U : 0U);
        if (launch == 11) {
            EXPECT_NE(host.alerts.at(0).message.find("10th time"), std::string::npos);
        }
        EXPECT_EQ(launchCounter(), std::min(launch, 11));
    }
    EXPECT_EQ(host.opened, (Texts{infoText("BRDonationAddress"), infoText("BRStoreAddress")}));

    const std::int32_t least = std::numeric_limits<std::int32_t>::min();
    for (const auto& [before, after] : {std::pair(0, 0), {-3, -2}, {-1, 0}, {12, 12}, {least, least + 1}}) {
        NSUserDefaults::standardUserDefaults().setInteger(before, counterKey);
        launchAgain();
        EXPECT_EQ(launchCounter(), after) << before;
        EXPECT_TRUE(host.alerts.empty());
    }
}

TEST_F(Launch, FieldsRefuseWhatTheirFormattersRefuse) {
    start();
    // The number of beeps: the controller's, after the formatter's own for a name.
    for (const auto& [field, typed, beeps] : {std::tuple("uid", "x", 1),
                                              {"gid", "x", 1},
                                              {"tcpPort", "x", 1},
                                              {"idleDisconnectTime", "x", 1},
                                              {"smbNetBiosName", "X ", 2},
                                              {"smbWorkGroup", "X ", 2}}) {
        auto& control = this->control<NSTextField>(field);
        control.setEnabled(true);
        host.beeps = 0;
        const std::string before = control.stringValue();
        EXPECT_FALSE(control.proposeEdit(typed + before, std::string_view(typed).size(), {0, 0})) << field;
        EXPECT_EQ(host.beeps, beeps) << field;
        EXPECT_EQ(control.stringValue(), before) << field;
    }
}

TEST_F(Launch, LinksOpenTheirAddresses) {
    start();
    for (const char* link : {"goToWebpage:", "sendDonation:", "sendDonationKagi:", "sendFeedback:"}) {
        send(link);
    }
    EXPECT_EQ(host.opened,
              (Texts{infoText("BRHomePage"), infoText("BRDonationAddress"), infoText("BRStoreAddress"),
                     "mailto:" + infoText("BRSupportAddress") + "?subject=Brindle"}));
    EXPECT_TRUE(infoText("BRHomePage").starts_with("http://"));
    EXPECT_TRUE(std::regex_match(
        infoText("BRDonationAddress"),
        std::regex("https://[^/]+/xclick/business=[^@&?]+%40[^@&?]+&no_shipping=1&item_name=Brindle")));
    EXPECT_TRUE(std::regex_match(infoText("BRStoreAddress"), std::regex("http://[^?]+\\?[^&]+&lang=en")));
    EXPECT_TRUE(std::regex_match(infoText("BRVersionList"), std::regex("http://[^/]+/versionlist\\.xml")));
}

TEST_F(Launch, TheMenusReachTheServersAndTheAboutPanel) {
    host.onListing = [](const std::string& command) -> std::optional<std::string> {
        return command.find("smbd") != std::string::npos ? "310\n" : "210\n";
    };
    start();
    send("restartSMB:");
    send("restartAFS:");
    EXPECT_EQ(host.runTexts(), (Texts{"/bin/kill -1 310", "/bin/kill -1 210"}));
    send("showAboutBox:");
    EXPECT_NE(host.loadedInterface->find("aboutWindow"), nullptr);
}

} // namespace
