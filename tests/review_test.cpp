#include "platform/foundation/NSDictionary.h"
#include "review/TextDifference.h"
#include "support/ReviewFixture.h"

#include <random>

namespace {

using review::LineChange;

/// A computer in some state, and a user who does something: both of them drawn by lot.
class Plans : public ReviewFixture, public testing::WithParamInterface<unsigned> {
  protected:
    Plans() : random_(GetParam()) {}

    int upTo(int limit) { return static_cast<int>(random_() % (static_cast<unsigned>(limit) + 1)); }

    bool sometimes() { return upTo(2) == 0; }

    template <class Kind>
    const Kind& oneOf(const std::vector<Kind>& all) {
        return all[static_cast<std::size_t>(upTo(static_cast<int>(all.size()) - 1))];
    }

    void fillDirectory() {
        addGroup("staff", "20", {"bob"});
        addGroup("admin", "80", {"adam"});
        addGroup("friends", "501", {"bob", "adam"});
        for (int user = 0; user < 6; ++user) {
            addUser(oneOf<std::string>({"bob", "adam", "eve", "Carl", "low"}), std::to_string(95 + upTo(10)));
        }
        for (int share = 0; share < upTo(4); ++share) {
            addShare(oneOf<std::string>({"Docs", "docs", "Films", "A b"}),
                     folder("f" + std::to_string(upTo(3))), std::to_string(upTo(1)));
        }
        if (sometimes()) { // a record as older systems wrote it
            nicl({"-create", "/config/Brindle/Old"});
            nicl({"-create", "/config/Brindle/Old", "directory_path", folder("old")});
            nicl({"-create", "/config/Brindle/Old", "comment", "mine"});
        }
    }

    void fillFiles() {
        std::string text;
        for (int part = 0; part < upTo(7); ++part) {
            text += oneOf<std::string>(
                {"[global]\n  workgroup = OFFICE\n# by hand\n  local master = Yes\n\n", "; a comment\n",
                 "[homes]\nbrowseable = no\n", ";[homes]\n; read only = yes\n",
                 "lost line\n[x] y\nsize = 1\n",
                 "[Docs]\npath = " + folder("f0") + "\nguest ok = Yes\nveto files = /x/\n\n",
                 "[Films]\npath = " + folder("f1") + "\nread only = No\n;Created by Brindle\n\n\n",
                 "[Global]\nserver string = other\n", "[printers]\nprintable = yes\n", "\n\n"});
        }
        if (upTo(9) > 0) {
            writeConf(text);
        }
        if (upTo(9) > 0) {
            writeAFP(
                std::string(sometimes() ? "<key>guestAccess</key><true/>" : "") +
                (sometimes() ? "<key>loggingAttributes</key><dict><key>logLogin</key><true/></dict>" : "") +
                "<key>maxConnections</key><integer>" + std::to_string(upTo(9)) + "</integer>");
        }
    }

    void edit() {
        const std::vector<std::pair<const char*, std::vector<std::string>>> fields = {
            {"shareName", {"Docs", "Films", "new one", "a]", "homes", ""}},
            {"directory", {folder("f0", 0700), folder("f2", 0750), "/nowhere", "/etc", "folder\\", ""}},
            {"shortName", {"bob", "adam", "new", "a,b", "CARL", ""}},
            {"fullName", {"Some Body", ""}},
            {"uid", {"501", "99", "4294967295", ""}},
            {"groupName", {"friends", "new", "a/b", ""}},
            {"gid", {"501", "777", ""}},
            {"smbWorkGroup", {"HOME", ""}},
            {"smbServerInfoString", {"text", "ends in\\", ""}},
            {"greeting", {"Hello", ""}},
        };
        for (const auto& [field, texts] : fields) {
            if (sometimes()) {
                type(field, oneOf(texts));
            }
        }
        for (const char* menu : {"owner", "group", "ownerPrivs", "groupPrivs", "everyonePrivs", "sharingAFS",
                                 "sharingSMB", "groupPopUp", "publicSharedPopUp", "smbSecurity"}) {
            if (sometimes() && control<NSPopUpButton>(menu).numberOfItems() > 0) {
                choose(menu, upTo(control<NSPopUpButton>(menu).numberOfItems() - 1));
            }
        }
        for (const char* box : {"inheritPermissionsButton", "guestAccessButton", "smbWorkGroupMaster",
                                "smbShareHomeDirs", "allowGuestAccess"}) {
            if (sometimes()) {
                click(box);
            }
        }
        for (const char* table :
             {"normalTableView", "userTableView", "groupTableView", "groupUsersTableView"}) {
            if (upTo(3) > 0) {
                control<NSTableView>(table).selectRow(upTo(4) - 1);
            }
        }
        if (upTo(9) == 0) {
            writeConf("[other]\npath = /changed/meanwhile\n");
        }
    }

    std::string anOperation() {
        return oneOf<std::string>(
            {"createShare:", "createShare:", "deleteShare:", "deleteAllShares:", "updateSharesFor10pt2:",
             "addNewUser:", "addNewUser:", "addNewGroup:", "deleteSelectedUser:", "deleteSelectedGroup:",
             "addUserToGroup:", "removeUserFromGroup:", "enableSelectedPublicShare:",
             "enableAllPublicShares:", "disableAllPublicShares:", "updateAFSProperties:",
             "updateSMBProperties:"});
    }

    std::string conf() const {
        return platform::readWholeFile((host.root() / "etc/smb.conf").string()).valueOr("");
    }

    std::string afp() const {
        return platform::readWholeFile(
                   (host.root() / "Library/Preferences/com.apple.AppleFileServer.plist").string())
            .valueOr("");
    }

    static std::vector<std::string> runsOf(const review::Plan& plan) {
        std::vector<std::string> texts;
        for (const review::PlannedRun& run : plan.runs) {
            texts.push_back(RecordedRun{run.tool, run.arguments}.text());
        }
        return texts;
    }

    /// Does what was planned, answering as the plan did, and compares.
    void expectSameAs(const review::Plan& plan, NSControl& sender) {
        for (const review::PlannedAsk& ask : plan.asks) {
            host.answerAlert(ask.title, ask.button);
        }
        host.shownRuns.clear();
        NSApp().dispatch([&] { sender.sendAction(); });
        EXPECT_EQ(runsOf(plan), host.shownRuns);
        EXPECT_EQ(plan.smbConfAfter, conf());
        for (const review::SettingChange& change : plan.afpSettings) {
            const auto settings = NSMutableDictionary::dictionaryWithData(afp())->values();
            const auto found =
                std::ranges::find(settings, change.key, &std::pair<std::string, std::string>::first);
            EXPECT_EQ(found == settings.end() ? "" : found->second, change.after) << change.key;
        }
        for (const review::FolderChange& change : plan.folders) {
            struct stat status {};

            ASSERT_EQ(::stat(change.path.c_str(), &status), 0) << change.path;
            EXPECT_EQ(status.st_uid, change.ownerAfter);
            EXPECT_EQ(status.st_gid, change.groupAfter);
            EXPECT_EQ(status.st_mode & 07777U, change.modeAfter);
        }
        if (NSWindow* sheet = NSApp().attachedSheet()) { // of a new user
            enterPassword(*sheet);
        }
    }

    void enterPassword(NSWindow& sheet) {
        type("passwordSecureText1", "secret");
        type("passwordSecureText2", "secret");
        const review::Plan plan = reviewer->planSend("setPassword:");
        EXPECT_TRUE(sheet.isVisible());
        EXPECT_EQ(plan.runs.size(), 1U);
        expectSameAs(plan, *interface->findWiredTo("setPassword:"));
    }

    std::mt19937 random_;
};

TEST_P(Plans, SayRunForRunAndLineForLineWhatTheActionThenDoesAndChangeNothing) {
    fillDirectory();
    fillFiles();
    host.allowUnaskedAlerts(); // the migration's at the start
    begin();
    for (int step = 0; step < 12; ++step) {
        edit();
        const std::string operation = anOperation();
        SCOPED_TRACE(operation + ", step " + std::to_string(step) + "\n" + controls());
        NSControl* sender = interface->findWiredTo(operation);
        if (sender == nullptr || !sender->isEnabled()) {
            continue;
        }
        const auto filesBefore = everything();
        const std::string controlsBefore = controls();
        const review::Plan plan = reviewer->planSteps(*sender);
        ASSERT_EQ(plan.failure, "");
        EXPECT_EQ(everything(), filesBefore);
        EXPECT_EQ(controls(), controlsBefore);
        EXPECT_EQ(plan.smbConfLines,
                  review::lineChanges(review::linesOf(conf()), review::linesOf(plan.smbConfAfter)));
        if (plan.blocks.empty()) {
            expectSameAs(plan, *sender);
        } else {
            host.shownRuns.clear();
            sender->sendAction();
            EXPECT_EQ(host.shownRuns, std::vector<std::string>());
        }
        if (HasFailure()) {
            return;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Drawn, Plans, testing::Range(1U, 26U));

TEST(TextDifference, HasTheFewestLinesInTheirOrder) {
    const auto changes = [](std::string_view before, std::string_view after) {
        std::string text;
        for (const LineChange& change :
             review::lineChanges(review::linesOf(before), review::linesOf(after))) {
            text += (change.kind == LineChange::Kind::Goes ? "-" : "+") + change.line +
                    std::to_string(change.number);
        }
        return text;
    };
    EXPECT_EQ(changes("a\nb\nc\n", "a\nb\nc\n"), "");
    EXPECT_EQ(changes("", "a\n\n"), "+a1+2");
    EXPECT_EQ(changes("a\nb\nc\nd\n", "a\nx\nc\nd\ne\n"), "-b2+x2+e5");
    EXPECT_EQ(changes("a\nb\na\nb\n", "b\na\n"), "-a1-b4");
    EXPECT_EQ(changes("x\na\nb\nc\n", "a\nb\ny\nc\n"), "-x1+y3");
}

} // namespace
