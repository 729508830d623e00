#include "support/AppFixture.h"

#include <tuple>

namespace fs = std::filesystem;

namespace {

constexpr const char* plistPath = "Library/Preferences/com.apple.AppleFileServer.plist";
constexpr const char* restartAFSRun = "/bin/kill -1 210";
constexpr const char* restartSMBRun = "/bin/kill -1 310";

/// Every setting that the tab shows, with its type, and some that it does not show.
constexpr const char* fullSettings = R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
<key>loginGreeting</key><string>Hello &amp; welcome</string>
<key>sendGreetingOnce</key><true/>
<key>unknownData</key><data>AAEC</data>
<key>idleDisconnectOnOff</key><true/>
<key>idleDisconnectTime</key><integer>10</integer>
<key>idleDisconnectFlag</key><dict>
<key>guestUsers</key><true/><key>registeredUsers</key><false/><key>adminUsers</key><true/>
<key>usersWithOpenFiles</key><false/><key>unknownFlag</key><real>1.5</real></dict>
<key>activityLog</key><false/>
<key>activityLogTime</key><integer>7</integer>
<key>activityLogPath</key><string>/Library/Logs/AppleFileService.log</string>
<key>loggingAttributes</key><dict>
<key>logLogin</key><true/><key>logLogout</key><false/><key>logCreateDir</key><true/>
<key>logCreateFile</key><false/><key>logOpenFork</key><true/><key>logDelete</key><true/></dict>
<key>maxConnections</key><integer>-1</integer>
<key>maxGuests</key><integer>5</integer>
<key>afpTCPPort</key><integer>548</integer>
<key>adminGetsSp</key><false/>
<key>guestAccess</key><true/>
<key>registerNSL</key><true/>
<key>afpServerEncoding</key><integer>29</integer>
<key>unknownList</key><array><integer>1</integer><date>2004-01-01T00:00:00Z</date></array>
</dict></plist>
)";

class SettingsTest : public AppFixture {
  protected:
    SettingsTest() {
        host.onListing = [](const std::string& command) -> std::optional<std::string> {
            return command.find("smbd") != std::string::npos ? "310\n" : "210\n";
        };
    }

    void startWithSettings(const std::string& plist) {
        host.write(plistPath, plist);
        start();
    }

    void startWithConf(const std::string& bytes) {
        host.write("etc/smb.conf", bytes);
        start();
    }

    /// Returns the file's text after the SMB page's save button is pressed.
    std::string savedConf() {
        send("updateSMBProperties:");
        return host.read("etc/smb.conf");
    }

    [[nodiscard]] fs::path temporary() const { return host.home() / "AppleFileServer.plist"; }

    std::string copyRun() const { return "/bin/cp " + temporary().string() + " /" + plistPath; }

    /// Returns the list as our property lists write it, so that only keys, values and types are compared.
    static std::string canonical(const std::string& plist) {
        return NSMutableDictionary::dictionaryWithData(plist).value_or(NSMutableDictionary()).xmlText();
    }

    NSMutableDictionary saved() const {
        return NSMutableDictionary::dictionaryWithData(host.read(plistPath)).value_or(NSMutableDictionary());
    }
};

using Runs = std::vector<std::string>;

} // namespace

TEST_F(SettingsTest, SavingUnchangedKeepsEveryKeyValueAndType) {
    startWithSettings(fullSettings);
    EXPECT_EQ(app().greeting->stringValue(), "Hello & welcome");
    EXPECT_EQ(app().numConnections->stringValue(), "-1");
    EXPECT_EQ(app().afpTextEncoding->tagOfSelectedItem(), 29);
    EXPECT_EQ(app().idleDisconnectUsers->stateAt(0, 2), NSOnState);
    EXPECT_EQ(app().loggingAttributes2->stateAt(1, 0), NSOffState);
    EXPECT_TRUE(app().idleDisconnectTime->isEnabled());
    EXPECT_FALSE(app().logFilePath->isEnabled());
    send("updateAFSProperties:");
    EXPECT_EQ(canonical(host.read(plistPath)), canonical(fullSettings));
    EXPECT_EQ(takeRuns(), (Runs{copyRun(), restartAFSRun}));
    EXPECT_FALSE(fs::exists(temporary()));
}

TEST_F(SettingsTest, EveryControlIsSavedUnderItsOwnKey) {
    startWithSettings(fullSettings);
    std::string expected = fullSettings;
    const auto saves = [&](const std::string& key, const std::string& from, const std::string& to) {
        SCOPED_TRACE(key);
        const std::string before = "<key>" + key + "</key>";
        const std::size_t at = expected.find(before + from);
        ASSERT_NE(at, std::string::npos) << "the setting is not what this test expects";
        expected.replace(at + before.size(), from.size(), to);
        send("updateAFSProperties:");
        EXPECT_EQ(canonical(host.read(plistPath)), canonical(expected));
        send("refreshAFSProperties:"); // shows what was saved; the next save must keep it
    };
    const auto flips = [&](const std::string& key, int stateBefore) {
        const bool on = stateBefore == NSOnState;
        saves(key, on ? "<true/>" : "<false/>", on ? "<false/>" : "<true/>");
    };
    for (const auto& [key, box] : {std::pair{"sendGreetingOnce", app().greetingOnce},
                                   {"idleDisconnectOnOff", app().idleDisconnectEnable},
                                   {"activityLog", app().loggingEnable},
                                   {"adminGetsSp", app().adminSpPrivsButton},
                                   {"guestAccess", app().allowGuestAccess},
                                   {"registerNSL", app().useRendezvous}}) {
        const int before = box->state();
        box->performClick();
        flips(key, before);
    }
    for (const auto& [key, matrix, row, column] : {std::tuple{"guestUsers", app().idleDisconnectUsers, 0, 0},
                                                   {"registeredUsers", app().idleDisconnectUsers, 0, 1},
                                                   {"adminUsers", app().idleDisconnectUsers, 0, 2},
                                                   {"usersWithOpenFiles", app().idleDisconnectUsers, 0, 3},
                                                   {"logLogin", app().loggingAttributes1, 0, 0},
                                                   {"logLogout", app().loggingAttributes1, 1, 0},
                                                   {"logCreateDir", app().loggingAttributes2, 0, 0},
                                                   {"logCreateFile", app().loggingAttributes2, 1, 0},
                                                   {"logOpenFork", app().loggingAttributes3, 0, 0},
                                                   {"logDelete", app().loggingAttributes3, 1, 0}}) {
        const int before = matrix->stateAt(row, column);
        matrix->setStateAt(row, column, before == NSOnState ? NSOffState : NSOnState);
        flips(key, before);
    }
    for (const auto& [key, field, from, typed, to] :
         {std::tuple{"idleDisconnectTime", app().idleDisconnectTime, "10", "11", "11"},
          {"activityLogTime", app().logRolloverText, "7", "8", "8"},
          {"maxConnections", app().numConnections, "-1", "12 people", "12"},
          {"maxGuests", app().numGuestConnections, "5", "6", "6"},
          {"afpTCPPort", app().tcpPort, "548", "", "0"}}) {
        field->setStringValue(typed);
        saves(key, "<integer>" + std::string(from) + "<", "<integer>" + std::string(to) + "<");
    }
    for (const auto& [key, field, from, to] :
         {std::tuple{"loginGreeting", app().greeting, "Hello &amp; welcome", "Bye"},
          {"activityLogPath", app().logFilePath, "/Library/Logs/AppleFileService.log", "/afp.log"}}) {
        field->setStringValue(to);
        saves(key, "<string>" + std::string(from) + "<", "<string>" + std::string(to) + "<");
    }
    app().afpTextEncoding->performSelect(app().afpTextEncoding->indexOfItemWithTag(25));
    saves("afpServerEncoding", "<integer>29<", "<integer>25<");
}

TEST_F(SettingsTest, SettingsThatCouldNotBeReadAreNotReplaced) {
    start();
    EXPECT_EQ(app().numConnections->stringValue(), "0");
    host.answerAlert("AppleFileServer.plist Write Unsuccessful", "OK");
    send("updateAFSProperties:");
    EXPECT_TRUE(host.alerts.back().message.starts_with("The ~/AppleFileServer.plist file write operation "));
    EXPECT_EQ(takeRuns(), Runs{});
    EXPECT_FALSE(fs::exists(temporary()) || fs::exists(host.root() / plistPath));
}

TEST_F(SettingsTest, MissingSettingsShowAsOffOrEmpty) {
    startWithSettings("<plist version=\"1.0\"><dict><key>afpServerEncoding</key><integer>99</integer>"
                      "<key>activityLog</key><true/></dict></plist>");
    EXPECT_EQ(app().greeting->stringValue() + "|" + app().tcpPort->stringValue(), "|0");
    EXPECT_EQ(app().afpTextEncoding->indexOfSelectedItem(), -1);
    app().loggingAttributes1->setStateAt(0, 0, NSOnState);
    app().logFilePath->setStringValue("/a.log");
    app().loggingEnable->performClick();
    EXPECT_FALSE(app().logFileBrowseButton->isEnabled());
    send("updateAFSProperties:");
    EXPECT_EQ(saved().stringForKey("activityLogPath"), "/a.log");
    EXPECT_FALSE(saved().hasKey("loggingAttributes"));
    EXPECT_EQ(saved().intForKey("afpServerEncoding"), 0);
    EXPECT_EQ(takeRuns(), (Runs{copyRun(), restartAFSRun}));
}

TEST_F(SettingsTest, AFailedSaveSaysWhichStepFailedAndWhatIsLeft) {
    const std::string address = NSBundle::mainBundle().objectForInfoDictionaryKey("BRSupportAddress");
    const std::string title = "AppleFileServer.plist Write Unsuccessful";
    const auto saveFails = [&](const std::string& step) {
        host.answerAlert(title, "OK");
        host.alerts.clear();
        send("updateAFSProperties:");
        ASSERT_EQ(host.alerts.size(), 1U);
        EXPECT_EQ(host.alerts[0].message, "The " + step + " operation was unsuccessful.  Please email " +
                                              address + " with this information.");
    };
    startWithSettings(fullSettings);
    app().greeting->setStringValue("edited");

    host.rightHeld = host.administratorAllows = false;
    saveFails("AppleFileServer.plist file copy");
    EXPECT_EQ(takeRuns(), Runs{});
    EXPECT_FALSE(fs::exists(temporary()));
    host.rightHeld = host.administratorAllows = true;

    host.onRun = [](const RecordedRun&) { return TestHost::RunAnswer{"cp: no\n", 0}; };
    saveFails("AppleFileServer.plist file copy");
    EXPECT_EQ(takeRuns(), Runs{copyRun()});
    EXPECT_FALSE(fs::exists(temporary()));
    EXPECT_EQ(host.read(plistPath), fullSettings);

    host.onRun = [this](const RecordedRun& run) {
        if (run.tool == "/bin/cp") {
            fs::remove(temporary());
        }
        return TestHost::RunAnswer{};
    };
    saveFails("old AppleFileServer.plist file removal");
    EXPECT_EQ(takeRuns(), (Runs{copyRun(), restartAFSRun}));

    fs::create_directories(temporary() / "in the way");
    saveFails("~/AppleFileServer.plist file write");
    EXPECT_EQ(takeRuns(), Runs{});
    EXPECT_EQ(host.log.back(), temporary().string() + " could not be written: Is a directory");
    send("refreshAFSProperties:");
    EXPECT_EQ(app().greeting->stringValue(), "edited");
}

TEST_F(SettingsTest, TheLogFileIsChosenInTheFolderOfTheCurrentOne) {
    startWithSettings(fullSettings);
    app().loggingEnable->performClick();
    host.choosePath("/var/log/afp.log");
    send("selectLogFile:");
    EXPECT_EQ(app().logFilePath->stringValue(), "/var/log/afp.log");
    ASSERT_EQ(host.panels.size(), 1U);
    EXPECT_EQ(host.panels[0].directory + "|" + host.panels[0].file, "/Library/Logs|AppleFileService.log");
    EXPECT_TRUE(host.panels[0].canChooseFiles && !host.panels[0].canChooseDirectories);
    host.choosePath(std::nullopt);
    send("selectLogFile:");
    EXPECT_EQ(app().logFilePath->stringValue(), "/var/log/afp.log");
    EXPECT_EQ(takeRuns(), Runs{});
}

TEST_F(SettingsTest, AnEmptyFileGetsBothSections) {
    startWithConf("");
    EXPECT_EQ(app().smbShareHomeDirs->state(), NSOffState);
    EXPECT_FALSE(app().smbHomeDirsReadOnly->isEnabled());
    type("smbWorkGroup", "OFFICE");
    type("smbNetBiosName", "MAC");
    type("smbVetoFiles", "/*.exe/");
    type("smbHideFiles", "/Icon/");
    type("smbServerInfoString", "Files");
    type("smbMaxConnections", "7");
    type("smbWINSServer", "10.0.0.1");
    app().smbHideDotFiles->performClick();
    EXPECT_EQ(savedConf(),
              ";[homes]\n;browseable = yes\n;read only = yes\n\n\n"
              "[global]\nnetbios name = MAC\nmax connections = 7\nworkgroup = OFFICE\n"
              "wins server = 10.0.0.1\nserver string = Files\nmap to guest = Bad User\nsecurity = USER\n"
              "dos charset = CP850\nhide files = /Icon/\nlocal master = yes\nveto files = /*.exe/\n"
              "hide dot files = no\n\n\n"
              "\n\n"); // the empty entry of an empty file
    EXPECT_EQ(takeRuns().back(), restartSMBRun);
}

TEST_F(SettingsTest, ChangesReachTheFirstPairAndNothingElse) {
    startWithConf(
        "# top\n[global]\nworkgroup = ONE\nwins server = old\nlocal master = Yes\nworkgroup = TWO\n"
        "security = SHARE\ndos charset = CP850\nprinting = bsd\n[homes]\ncomment = Home\nread only = yes\n");
    EXPECT_EQ(app().smbWorkGroup->stringValue(), "TWO");
    EXPECT_EQ(app().smbSecurity->indexOfSelectedItem(), 1);
    EXPECT_EQ(app().smbCodePage->tagOfSelectedItem(), 850);
    EXPECT_EQ(app().smbWorkGroupMaster->state(), NSOffState) << "only the exact text means yes";
    EXPECT_EQ(app().smbHomeDirsReadOnly->state(), NSOnState);
    app().smbSecurity->performSelect(0);
    app().smbWINSServer->setStringValue("");
    app().smbCodePage->performSelect(app().smbCodePage->indexOfItemWithTag(437));
    EXPECT_EQ(savedConf(),
              "# top\n\n\n[global]\nworkgroup = TWO\nlocal master = no\nworkgroup = TWO\nsecurity = USER\n"
              "dos charset = CP437\nprinting = bsd\nmap to guest = Bad User\nhide dot files = yes\n\n\n"
              "[homes]\ncomment = Home\nread only = yes\nbrowseable = yes\n\n\n");
    app().smbSecurity->performSelect(1);
    EXPECT_NE(
        savedConf().find("security = SHARE\ndos charset = CP437\nprinting = bsd\nmap to guest = Never\n"),
        std::string::npos);
}

TEST_F(SettingsTest, CommentedOutHomesCanBeEnabledAndDisabledAgain) {
    startWithConf(
        "[global]\nsecurity = DOMAIN\ndos charset = UTF8\n;[homes]\n;browseable = yes\n; note\n;path = /h\n");
    EXPECT_EQ(app().smbShareHomeDirs->state(), NSOffState);
    EXPECT_EQ(app().smbHomeDirsBrowseable->state(), NSOnState);
    EXPECT_FALSE(app().smbHomeDirsBrowseable->isEnabled());
    EXPECT_EQ(app().smbSecurity->titleOfSelectedItem(), "DOMAIN");
    EXPECT_EQ(app().smbSecurity->indexOfSelectedItem(), 2);
    send("refreshSMBProperties:");
    EXPECT_EQ(app().smbSecurity->numberOfItems(), 3) << "the item is there already";
    const std::string global =
        "[global]\nsecurity = DOMAIN\ndos charset = UTF8\nlocal master = yes\nhide dot files = yes\n\n\n";
    app().smbShareHomeDirs->performClick();
    EXPECT_TRUE(app().smbHomeDirsBrowseable->isEnabled());
    EXPECT_EQ(savedConf(), global + "[homes]\nbrowseable = yes\npath = /h\nread only = yes\n; note\n\n\n");
    app().smbShareHomeDirs->performClick();
    EXPECT_FALSE(app().smbHomeDirsBrowseable->isEnabled());
    EXPECT_EQ(savedConf(),
              global + ";[homes]\n;browseable = yes\n;path = /h\n;read only = yes\n; note\n\n\n");
}

TEST_F(SettingsTest, RevertDropsAllEditsAndARefreshOnlyThoseOfKeysInTheFile) {
    startWithConf("[global]\nworkgroup = A\nhide dot files = no\nsecurity = DOMAIN\n");
    const auto shown = [this] {
        return text("smbWorkGroup") + "|" + text("smbWINSServer") + "|" +
               std::to_string(app().smbWorkGroupMaster->state()) +
               std::to_string(app().smbHideDotFiles->state()) + "|" +
               app().smbSecurity->titleOfSelectedItem().value_or("") + "|" +
               std::to_string(app().smbCodePage->tagOfSelectedItem());
    };
    const std::string first = shown();
    type("smbWorkGroup", "B");
    type("smbWINSServer", "10.0.0.1");
    app().smbWorkGroupMaster->performClick();
    app().smbHideDotFiles->performClick();
    app().smbSecurity->performSelect(1);
    app().smbCodePage->performSelect(4);
    send("refreshSMBProperties:");
    EXPECT_EQ(shown(), "A|10.0.0.1|00|DOMAIN|852");
    send("revertSMBProperties:");
    EXPECT_EQ(shown(), first);
}

TEST_F(SettingsTest, AFailedSMBWriteIsShownAndTheServerIsStillRestarted) {
    startWithConf("[global]\nworkgroup = A\n");
    const fs::path written = host.home() / "smb_test.conf";
    const std::string address = NSBundle::mainBundle().objectForInfoDictionaryKey("BRSupportAddress");
    const auto saveFails = [&](const std::string& step) {
        host.answerAlert("smb.conf Write Unsuccessful", "OK");
        host.alerts.clear();
        EXPECT_EQ(savedConf(), "[global]\nworkgroup = A\n");
        ASSERT_EQ(host.alerts.size(), 1U);
        EXPECT_EQ(host.alerts[0].message, "The " + step + " operation was unsuccessful.  Please email " +
                                              address + " with this information.");
        EXPECT_EQ(takeRuns().back(), restartSMBRun);
    };
    type("smbWorkGroup", "B");
    host.onRun = [](const RecordedRun& run) {
        return TestHost::RunAnswer{run.tool == "/bin/cp" ? "cp: no\n" : "", 0};
    };
    saveFails("smb.conf file copy");
    host.onRun = [&](const RecordedRun& run) {
        if (run.tool == "/bin/cp") {
            fs::remove(written);
        }
        return TestHost::RunAnswer{};
    };
    saveFails("old smb.conf file removal");
    fs::create_directories(written / "in the way");
    saveFails("~/smb.conf file write");
    fs::remove_all(written);

    host.onRun = [this](const RecordedRun& run) { return carryOut(run); };
    EXPECT_EQ(savedConf(), ";[homes]\n;browseable = yes\n;read only = yes\n\n\n"
                           "[global]\nworkgroup = B\nmap to guest = Bad User\nsecurity = USER\n"
                           "dos charset = CP850\nlocal master = yes\nhide dot files = yes\n\n\n");
}

TEST_F(SettingsTest, AnInvalidCodePageStopsTheFillingButNotTheStart) {
    startWithConf("[global]\nworkgroup = A\ndos charset = \xC3\xA9\nserver string = late\n");
    EXPECT_EQ(app().smbWorkGroup->stringValue(), "A");
    EXPECT_EQ(app().smbServerInfoString->stringValue(), "");
    EXPECT_FALSE(app().smbHomeDirsBrowseable->isEnabled() || app().smbHomeDirsReadOnly->isEnabled());
    ASSERT_FALSE(host.log.empty());
    EXPECT_NE(host.log.back().find("smb.conf file located in the /etc/ directory"), std::string::npos);
}

TEST_F(SettingsTest, RevertGoesBackToWhatTheWindowBeginsWith) {
    startWithConf("");
    const std::vector<NSButton*> boxes{app().smbWorkGroupMaster, app().smbHideDotFiles,
                                       app().smbHomeDirsBrowseable, app().smbHomeDirsReadOnly};
    const auto shown = [&] {
        std::string states = std::to_string(app().smbCodePage->tagOfSelectedItem()) + " " +
                             app().smbSecurity->titleOfSelectedItem().value_or("");
        for (const NSButton* box : boxes) {
            states += std::to_string(box->state());
        }
        return states;
    };
    const std::string first = shown();
    app().smbShareHomeDirs->performClick(); // enables the boxes below it
    for (NSButton* box : boxes) {
        box->performClick();
    }
    app().smbCodePage->performSelect(4);
    app().smbSecurity->performSelect(1);
    send("revertSMBProperties:");
    EXPECT_EQ(shown(), first);
}

TEST_F(SettingsTest, TheMenuChoosesThePage) {
    start();
    control<NSPopUpButton>("smbPropsPage").performSelect(3);
    EXPECT_EQ(app().smbPropsTabView->indexOfSelectedTabViewItem(), 3);
}
