// The commands as a program uses them: what they print, how they end, and that a command without anything to
// change changes nothing.

#include "support/CommandsFixture.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <regex>

namespace {

/// The words that programs write and read are the same in every language.
class CommandsInALanguage : public Commands, public testing::WithParamInterface<const char*> {
  protected:
    void SetUp() override {
        Commands::SetUp();
        locale = GetParam();
    }
};

INSTANTIATE_TEST_SUITE_P(
    Of, CommandsInALanguage, testing::Values("C.UTF-8", "de_DE.UTF-8"), [](const auto& test) {
        return std::string(test.param).substr(0, std::string(test.param).find_first_of("._"));
    });

} // namespace

TEST_P(CommandsInALanguage, ChangeOnlyWhatDiffersAndNothingTwice) {
    const std::string docs = "shares add Docs " + folder().string() + " --everyone-may r";

    const struct {
        std::string line;
        std::string input;
    } writing[] = {
        {docs, ""}, // the first share of a new root is nothing to ask about
        {"shares set Docs --group-may none --afp --yes", ""},
        {"groups add crew --gid 7200 --yes", ""},
        {"users add ann --full-name Ann --uid 7201 --group crew --password-stdin --yes", "Wonderland1\r\n"},
        {"users set ann --full-name Anna --yes", ""},
        {"groups leave crew ann --yes", ""},
        {"groups join crew ann --yes", ""},
        {"public on ann --yes", ""},
        {"users add bob --group crew --no-password --yes", ""},
        {"public on --all --yes", ""},
        {"smb set workgroup HOME code-page 437 security user --yes", ""},
        {"afp set greeting Hello log yes --yes", ""},
        {"public off ann --yes", ""}};

    for (const auto& [line, input] : writing) {
        const json planned = answer(line + " --dry-run", 0, input);
        EXPECT_TRUE(planned.contains("plan") && !planned.contains("changed")) << line << planned;
        const json done = answer(line, 0, input);
        EXPECT_EQ(done["changed"], true) << line << done;
        EXPECT_GT(done["runs"], 0) << line;
        const json again = answer(line, 0, input);
        EXPECT_EQ(again["changed"], false) << line << again;
        EXPECT_EQ(again["runs"], 0) << line;
    }
    json share = answer("shares show Docs")["share"];
    EXPECT_EQ(share["owner"].get<std::string>() + "\n", runProgram({"/usr/bin/id", "-un"}).output);
    EXPECT_EQ(share["group"].get<std::string>() + "\n", runProgram({"/usr/bin/id", "-gn"}).output);
    share.erase("owner");
    share.erase("group");
    EXPECT_EQ(share, json::parse(R"({"name": "Docs", "folder": ")" + folder().string() +
                                 R"(", "smb": true, "afp": true, "guests": false, "ownerMay": "rw",
                                      "groupMay": "none", "everyoneMay": "r"})"));
    EXPECT_EQ(answer("users show ann")["user"],
              json::parse(
                  R"({"name": "ann", "fullName": "Anna", "uid": 7201, "gid": 7200, "publicFolder": false})"));
    EXPECT_EQ(answer("smb show")["smb"]["workgroup"], "HOME");
    EXPECT_EQ(answer("smb show")["smb"]["security"], "User");
    EXPECT_EQ(command("public off ann").output, "unchanged\n");
    EXPECT_EQ(answer("afp show")["afp"]["log"], "yes");
    const json access = answer("check-access Docs --guest");
    EXPECT_EQ(access["may"]["connect"], false);
    EXPECT_EQ(access["reason"]["code"], "guest-off");

    for (const char* removal :
         {"users remove ann --yes", "groups remove crew --yes", "shares remove Docs --yes"}) {
        EXPECT_EQ(answer(removal)["changed"], true) << removal;
        EXPECT_EQ(answer(removal)["changed"], false) << removal;
    }
    const json planned = answer("undo --dry-run")["plan"];
    EXPECT_EQ(planned.front(), "plan undo");
    const auto runs = std::ranges::count_if(
        planned, [](const json& line) { return line.get<std::string>().starts_with("would run "); });
    const json undone = answer("undo");
    EXPECT_EQ(undone["changed"], true);
    EXPECT_EQ(undone["runs"], runs) << planned;
    EXPECT_EQ(answer("shares list")["shares"].size(), 1U);
    EXPECT_EQ(answer("history")["history"].front()["outcome"], "done");
    EXPECT_EQ(command("--print groups").output.substr(0, 8), "Group ID");
}

TEST_F(Commands, CannotTellTheAccessToWhatBrindleDoesNotRead) {
    answer("shares add Docs " + folder().string() + " --smb --yes");
    std::ofstream(test_.root() / "computer/etc/smb.conf", std::ios::app)
        << "[Scans] \npath = /tmp\nread only = no\n[homes]\n";
    for (const char* share : {"scans", "Docs", "root"}) {
        EXPECT_EQ(answer("check-access " + std::string(share) + " root")["reason"]["code"], "cannot-tell");
    }
    EXPECT_EQ(answer("check-access Nothing root")["reason"]["code"], "not-published");
}

TEST_F(Commands, ThatWriteAtOnceLoseNothing) {
    const std::string add = std::string(BRINDLE_PROGRAMS "/brindle --root ") +
                            (test_.root() / "computer").string() + " shares add --yes --smb Share$each " +
                            folder().string();
    const Finished finished =
        runProgram({"/bin/sh", "-c", "for each in 1 2 3 4 5; do " + add + " & done; wait"}, {},
                   {"HOME=" + test_.home().string(), "LC_ALL=C"});
    EXPECT_EQ(finished.output, "changed\nchanged\nchanged\nchanged\nchanged\n") << finished.errors;
    for (const char* name : {"1", "2", "3", "4", "5"}) {
        EXPECT_TRUE(test_.read("computer/etc/smb.conf").find("[Share" + std::string(name) + "]") !=
                    std::string::npos);
    }
}

TEST_F(Commands, SpeakThePersonsLanguage) {
    locale = "de_DE.UTF-8"; // need not be installed
    EXPECT_EQ(command("shares set Nowhere --smb").errors, "brindle: es gibt keine Freigabe „Nowhere“\n");
    EXPECT_EQ(
        answer("groups add crew --gid 7200", 3)["error"]["text"],
        "Gruppe hinzufügen: Möchten Sie wirklich eine neue Gruppe hinzufügen? (mit --yes fahren Sie fort)");
}

TEST_F(Commands, EndWithAStatusThatSaysWhatIsMissing) {
    const std::string add = "shares add Docs " + folder().string();
    EXPECT_EQ(answer(add + " --yes")["changed"], true);

    const struct {
        const char* line;
        int status;
        const char* text;
    } cases[] = {{"shares add Docs / --yes", 1, "a different share \"Docs\" already exists"},
                 {"shares set Nowhere --smb", 1, "there is no share \"Nowhere\""},
                 {"shares add Other /no/such/folder --yes", 1, "there is no folder /no/such/folder"},
                 {"shares set Docs --owner zoe --yes", 1, "there is no user \"zoe\""},
                 {"smb set max-connections many --yes", 1, "max-connections cannot be"},
                 {"afp set max-guests 12abc --yes", 1, "max-guests cannot be"},
                 {"afp set port 4294967844 --yes", 1, "port cannot be"},
                 {"shares add", 2, "required"},
                 {"shares set Docs --owner-may everything", 2, "everything"},
                 {"shares peel", 2, "peel; see brindle shares --help"},
                 {"smb set workgroup", 2, "each setting needs a value"},
                 {"groups add crew --gid 7200", 3, "Are you sure"},
                 {"users add zoe --yes", 3, "--password-stdin"},
                 {"undo 99", 1, "99"},
                 {"servers status", 1, "--serve"}};

    for (const auto& [line, status, text] : cases) {
        const json error = answer(line, status)["error"];
        EXPECT_EQ(error["status"], status) << line;
        EXPECT_NE(error["text"].get<std::string>().find(text), std::string::npos) << line << error;
    }
    EXPECT_EQ(answer("groups list")["groups"].dump().find("crew"), std::string::npos);
    fs::rename(test_.root() / "computer/etc/smb.conf", test_.root() / "smb.conf");
    fs::create_directory(test_.root() / "computer/etc/smb.conf");
    for (const char* line :
         {"shares list", "shares remove Docs --yes", "smb show", "smb set workgroup X --yes"}) {
        EXPECT_NE(command(line).errors.find("smb.conf cannot be read"), std::string::npos) << line;
    }
    EXPECT_EQ(command("--print shares").status, 1);
    fs::remove(test_.root() / "computer/etc/smb.conf");
    fs::rename(test_.root() / "smb.conf", test_.root() / "computer/etc/smb.conf");
    test_.write("computer/directory.db", "a letter");
    for (const char* line :
         {"users list", "groups list", "groups show staff", "users add ann --no-password --yes",
          "public on ann --yes", "public on --all --yes", "users remove ann --yes",
          "groups remove crew --yes", "shares remove Other --yes"}) {
        const Finished refused = command(line);
        EXPECT_NE(refused.errors.find("could not be read"), std::string::npos) << line << refused.output;
        EXPECT_EQ(refused.status, 1) << line;
    }
    EXPECT_EQ(command("--print groups").status, 1);
}

TEST_F(Commands, SayWhenTheirWordsOrTheHistoryAreLost) {
    EXPECT_EQ(answer("groups add crew --yes").contains("notInHistory"), false);
    const fs::path history = test_.root() / "computer/history.db";
    fs::remove(history);
    fs::create_directory(history);
    const Finished finished = command("groups add team --yes --json");
    EXPECT_TRUE(json::parse(finished.output).contains("notInHistory")) << finished.output;
    EXPECT_NE(finished.errors.find("history.db"), std::string::npos);
    const std::string line =
        BRINDLE_PROGRAMS "/brindle groups add more --yes --root " + (test_.root() / "computer").string();
    EXPECT_EQ(runProgram({"sh", "-c", line + " >&-"}, "", {"HOME=" + test_.home().string()}).status, 1);
}

TEST_F(Commands, LeaveNoUserWithoutThePasswordThatWasGiven) {
    const std::string add = "users add ann --password-stdin --yes";
    EXPECT_EQ(answer(add, 1, "\n")["error"]["status"], 1);
    EXPECT_EQ(answer(add, 1, std::string(300, 'x'))["error"]["status"], 1);
    EXPECT_EQ(answer("users show ann", 1)["error"]["status"], 1) << "nothing is half made";
    EXPECT_EQ(answer("users add ann --no-password --yes")["changed"], true);
    EXPECT_EQ(answer(add, 0, "Wonderland1\n")["changed"], true)
        << "as after an attempt that stopped half way";
    EXPECT_EQ(answer(add, 0, "Wonderland1\n")["changed"], false);
}

TEST_F(Commands, AskBeforeALossAndTakeHalfSharesForWhatTheyAre) {
    EXPECT_EQ(answer("users add ann --no-password --yes")["changed"], true);
    EXPECT_NE(answer("undo", 3)["error"]["text"].get<std::string>().find("password of ann"),
              std::string::npos);
    EXPECT_EQ(answer("undo --yes")["changed"], true);
    EXPECT_EQ(command("users remove root --yes").status, 1);

    const std::string add = "shares add Docs " + folder().string();
    EXPECT_EQ(answer(add + " --no-smb --yes")["share"]["smb"], false);
    EXPECT_EQ(answer(add + " --yes")["share"]["smb"], true) << "as after an attempt that stopped half way";
    EXPECT_EQ(answer("shares set Docs --folder / --yes", 1)["error"]["status"], 1) << "SMB keeps the old one";
    EXPECT_EQ(answer("shares remove Docs --yes")["changed"], true);
    test_.write("computer/etc/smb.conf", "[Docs]\npath = " + folder().string() + "\npublic = yes\n");
    const json guests = answer("shares set Docs --no-guests --yes", 1)["error"]["text"];
    EXPECT_NE(guests.get<std::string>().find("lets guests"), std::string::npos) << guests;
    EXPECT_EQ(answer("shares remove Docs --yes")["changed"], true) << "the section has no record";
    EXPECT_EQ(answer("history")["history"].front()["outcome"], "done");
}

TEST_F(Commands, CallNothingDoneThatTheServerStillDoes) {
    const std::string path = "path = " + folder().string() + "\n";
    EXPECT_EQ(answer("shares add one " + folder().string())["changed"], true);
    EXPECT_EQ(answer("shares add two " + folder().string() + " --yes")["share"]["smb"], true);
    EXPECT_EQ(answer("shares add two " + folder().string() + " --yes")["changed"], false);
    EXPECT_EQ(answer("shares remove one --yes")["changed"], true);
    EXPECT_EQ(answer("shares remove two --yes")["changed"], true);
    test_.write("computer/etc/smb.conf",
                "[global]\nguest ok = yes\n[Docs]\n" + path + "[both]\n" + path + "[homes]\n[homes]\n");
    const json shares = answer("shares list")["shares"];
    EXPECT_TRUE(std::ranges::any_of(shares, [](const json& share) { return share["guests"] == true; }));
    const std::pair<std::string, const char*> claims[] = {
        {"shares remove both --yes", "still shares \"both\""},
        {"shares set Docs --no-guests --yes", "lets guests"},
        {"smb set home-folders no --yes", "home folders"}};
    for (const auto& [line, text] : claims) {
        const std::string error = answer(line, 1)["error"]["text"];
        EXPECT_NE(error.find(text), std::string::npos) << line << error;
    }
    EXPECT_EQ(answer("shares add Other / --afp --guests --yes", 2)["error"]["status"], 2);

    EXPECT_EQ(answer("users add ann --no-password --yes")["changed"], true);
    EXPECT_EQ(answer("users password ann --dry-run")["plan"].back(),
              "would run /usr/bin/dscl . -passwd /Users/ann ********");
    EXPECT_EQ(answer("groups add crew --yes")["changed"], true);
    EXPECT_EQ(runProgram({BRINDLE_PROGRAMS "/nicl", "--root", (test_.root() / "computer").string(), ".",
                          "-delete", "/groups/crew"})
                  .status,
              0);
    EXPECT_TRUE(command("undo --yes").output.ends_with("unchanged\n")) << "it is gone already";
}

TEST_F(Commands, PrintForProgramsWhatTheApplicationShows) {
    const fs::path other = test_.root() / "Other";
    fs::create_directories(other);
    for (const std::string& line :
         {"shares add Docs " + folder().string() +
              " --guests --afp --smb --group-may w --everyone-may r --yes",
          "shares add Hidden " + other.string() + " --no-smb --owner-may r --group-may none --yes",
          std::string("groups add crew --gid 7200 --yes"),
          std::string("users add ann --full-name Ann --uid 7201 --group crew --public --no-password --yes"),
          std::string("users add bob --group crew --no-password --yes"),
          std::string("smb set workgroup HOME security share max-connections 7 hide-dot-files no --yes"),
          std::string("afp set greeting Hello max-guests 5 idle-guests yes --yes")}) {
        EXPECT_EQ(answer(line)["changed"], true) << line;
    }
    // The lines that a script would print, made from the JSON output.
    std::ostringstream lines;
    const std::map<std::string, std::string> privileges{
        {"rw", "\"r/w\""}, {"r", "\"r\""}, {"w", "\"w\""}, {"none", "\"\""}};
    int row = 0;
    const json shares = answer("shares list")["shares"];
    for (const json& share : shares) {
        const auto mark = [&](const char* key) { return share[key].get<bool>() ? "\"+\"" : "\"-\""; };
        lines << row++ << " ShareName=" << share["name"] << " DirectoryPath=" << share["folder"]
              << " Owner=" << privileges.at(share["ownerMay"])
              << " Group=" << privileges.at(share["groupMay"])
              << " Everyone=" << privileges.at(share["everyoneMay"]) << " AFS=" << mark("afp")
              << " SMB=" << mark("smb")
              << " SMBGuestAccess=" << (share["guests"].get<bool>() ? "\"Yes\"" : "\"No\"") << '\n';
    }
    row = 0;
    const json users = answer("users list")["users"];
    for (const json& user : users) {
        lines << row++ << " User=" << user["name"]
              << " \"Public Shared\"=" << (user["publicFolder"].get<bool>() ? "\"YES\"" : "\"NO\"")
              << " UID=\"" << user["uid"] << "\" \"Full Name\"=" << user["fullName"] << " GID=\""
              << user["gid"] << "\"\n";
    }
    row = 0;
    const json groups = answer("groups list")["groups"];
    for (const json& group : groups) {
        std::string members;
        for (const json& member : group["members"]) {
            members += (members.empty() ? "" : ",") + member.get<std::string>();
        }
        lines << row++ << " GID=\"" << group["gid"] << "\" Group=" << group["name"]
              << " \"Users in Group\"=\"" << (members.empty() ? "#NoValue#" : members) << "\"\n";
    }
    const json smb = answer("smb show")["smb"];
    lines << "smbWorkGroup " << smb["workgroup"] << "\nsmbSecurity 1 " << smb["security"]
          << "\nsmbMaxConnections " << smb["max-connections"] << "\nsmbHideDotFiles "
          << (smb["hide-dot-files"] == "yes" ? "on" : "off") << '\n';
    const json afp = answer("afp show")["afp"];
    lines << "greeting " << afp["greeting"] << "\nnumGuestConnections " << afp["max-guests"] << '\n';
    EXPECT_EQ(afp["idle-guests"], "yes");

    // Columns that are not in the JSON output are left out of the comparison.
    const std::string shown = std::regex_replace(
        runScript("start\nshow normalTableView userTableView groupTableView smbWorkGroup smbSecurity "
                  "smbMaxConnections smbHideDotFiles greeting numGuestConnections\n"),
        std::regex(
            R"( (AFPShared|AFPName|Inherit|InheritOwner)="[^"]*"|(^|\n)(alert|open|quit|\w+TableView)\b[^\n]*)"),
        "");
    EXPECT_EQ("\n" + lines.str(), shown);
}

TEST_F(Commands, AreCompletedWithExistingNames) {
    EXPECT_EQ(command("shares add Docs " + folder().string() + " --yes").status, 0);
    const auto completed = [&](const std::string& line) {
        const std::string root = (test_.root() / "computer").string();
        return runProgram({"bash", "-c",
                           "source " BRINDLE_RESOURCES
                           "/completion/brindle.bash; COMP_WORDS=(brindle --root " +
                               root + " " + line +
                               "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _brindle; echo ${COMPREPLY[@]}"},
                          {}, {"PATH=" BRINDLE_PROGRAMS ":/usr/bin:/bin", "HOME=" + test_.home().string()})
            .output;
    };
    EXPECT_EQ(completed("sh"), "shares\n");
    EXPECT_EQ(completed("shares set '\"D'"), "Docs\n"); // after an opening quote
    EXPECT_EQ(completed("shares set Docs --owner-may ''"), "rw r w none\n");
    EXPECT_EQ(completed("smb set wo"), "workgroup\n");
    EXPECT_EQ(completed("sessions disconnect --share ''"), "Docs\n");
    EXPECT_EQ(completed("do"), "doctor\n");

    const auto completedByFish = [&](const std::string& line) {
        return runProgram({"fish", "-c",
                           "source " BRINDLE_RESOURCES
                           "/completion/brindle.fish; complete -C 'brindle --root " +
                               (test_.root() / "computer").string() + " " + line + "' | cut -f 1"},
                          {}, {"PATH=" BRINDLE_PROGRAMS ":/usr/bin:/bin", "HOME=" + test_.home().string()})
            .output;
    };
    EXPECT_EQ(completedByFish("sh"), "shares\n");
    EXPECT_EQ(completedByFish("shares set "), "Docs\n");
    EXPECT_EQ(completedByFish("shares set Docs --owner-may r"), "r\nrw\n");
    EXPECT_EQ(completedByFish("smb set wo"), "workgroup\n");
}

TEST(ScriptThatStartsBrindle, InstallsTheWindowsPackagesForAWindowOnly) {
    const std::string functions =
        "eval \"$(sed -n '/^has_display/,/^}/p; /^wants_window/,/^}/p' " BRINDLE_RESOURCES
        "/../scripts/run)\"; DISPLAY=:0; wants_window ";
    for (const auto& [arguments, wants] : {std::pair("", true),
                                           {"--root shares --serve --port 9", true},
                                           {"--root d --snapshot out", true},
                                           {"--version", true}, // what is installed afterwards has a window
                                           {"doctor", false},
                                           {"--root d shares list", false},
                                           {"--print shares", false}}) {
        EXPECT_EQ(runProgram({"bash", "-c", functions + arguments}).status == 0, wants) << arguments;
    }
}
