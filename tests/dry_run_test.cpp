// A script on copies prints what the same script prints for real, and changes nothing.

#include "platform/posix/InputOutput.h"
#include "platform/posix/WholeFile.h"
#include "support/ProgramFixture.h"

#include <regex>

namespace {

class DryRun : public Program {
  protected:
    /// Returns the contents and modes of all files of the root and the home folder.
    [[nodiscard]] std::string everything() const {
        std::string all;
        // A folder may be closed to its own owner, unless that is root.
        constexpr auto options = std::filesystem::directory_options::skip_permission_denied;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(test_.root(), options)) {
            std::error_code none;
            all += entry.path().string() +
                   std::to_string(static_cast<unsigned>(entry.status(none).permissions())) + ' ';
            all += entry.is_regular_file() ? platform::readWholeFile(entry.path().string()).valueOr("") : "";
        }
        return all;
    }

    /// The output without what differs from one run to the next: the times of the history.
    static std::string timeless(const std::string& output) {
        return std::regex_replace(output, std::regex(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ)"), "TIME");
    }

    void expectSame(const std::string& commands, const std::string& part) const {
        const std::string before = everything();
        const Finished dry = run({"--dry-run", "--script", "-"}, commands);
        EXPECT_EQ(everything(), before);
        EXPECT_NE(dry.output.find(part), std::string::npos) << dry.output << dry.errors;
        const Finished real = run({"--script", "-"}, commands);
        EXPECT_EQ(timeless(dry.output), timeless(real.output));
        EXPECT_EQ(dry.errors, real.errors);
    }

    std::string computer_ = (test_.root() / "computer").string();
};

TEST_F(DryRun, PrintsWhatTheRealRunPrintsAndChangesNothing) {
    const std::string folder = (test_.root() / "f").string();
    std::filesystem::create_directories(folder);
    EXPECT_NE(script("start\n"), ""); // creates the root, which has no history yet
    const std::string commands =
        "start\ntype shareName Docs\ntype directory " + folder +
        "\nselect sharingSMB 1\ncheck guestAccessButton on\nplan press createNewShare\nreview on\n"
        "press createNewShare\nanswer Review \"Go On\"\npress createNewShare\nreview off\n"
        "choose " +
        folder +
        "\nsend selectDirectory:\nshow owner group ownerPrivs everyonePrivs normalTableView\n"
        "type groupName friends\ntype gid 600\nanswer Yes\npress createNewGroupButton\nshow groupTableView\n"
        "type shareName a[b\npress createNewShare\nsend updateAFSProperties:\nsend "
        "updateSMBProperties:\nreread\nhistory\nundo\nhistory\n";
    const std::string before = everything();
    const Finished dry = run({"--dry-run", "--script", "-"}, commands);
    EXPECT_EQ(dry.status, 0) << dry.errors;
    EXPECT_EQ(everything(), before);
    EXPECT_NE(dry.output.find("alert \"Not Possible\""), std::string::npos);
    EXPECT_EQ(timeless(dry.output), timeless(run({"--script", "-"}, commands).output));
    EXPECT_NE(everything(), before);
}

TEST_F(DryRun, RemembersTheOwnerAndModeThatAFolderWouldHave) {
    const std::string folder = (test_.root() / "f").string();
    std::filesystem::create_directories(folder);
    EXPECT_NE(script("start\n"), "");
    expectSame(
        "start\ntype shareName Docs\ntype directory " + folder +
            "\nselect everyonePrivs 0\npress createNewShare\nrows normalTableView 0\nselect ownerPrivs 0\n"
            "press createNewShare\nhistory\nundo\nundo\nhistory\n",
        " \"Owner or privileges of ");
}

TEST_F(DryRun, FailsWhereTheRealRunFailsAndNamesTheRealFiles) {
    const std::string change = "answer Donation Cancel\nstart\nshow smbConfNotice\ntype smbNetBiosName ONE\n"
                               "send updateSMBProperties:\n";
    expectSame(change, "run /bin/cp ");
    test_.write("computer/etc/smb.conf", "[global]\n# by hand\n[x] y\nnetbios name = TWO\n");
    expectSame("start\nshow smbConfNotice\nundo\n",
               "alert \"Not Possible\" \"" + computer_ + "/etc/smb.conf has");
    std::filesystem::remove(computer_ + "/etc/smb.conf");
    std::filesystem::create_directory(computer_ + "/etc/smb.conf");
    expectSame(change, "alert \"smb.conf Write Unsuccessful\"");
    test_.write("home/.config/brindle/defaults.plist", "no property list");
    expectSame("start\n", test_.home().string() + "/.config/brindle/defaults.plist is not a property list");
    std::filesystem::remove_all(computer_ + "/samba");
    expectSame(
        "start\nanswer Yes\ntype shortName bob\ntype fullName B\ntype uid 5000\npress addNewUserButton\n"
        "type passwordSecureText1 x\ntype passwordSecureText2 x\nsend setPassword:\n",
        "output \"dscl: cannot set the password");
}

TEST_F(DryRun, SaysThatADirectoryIsDamagedAndEndsAsTheRealRunWould) {
    EXPECT_NE(script("start\n"), "");
    test_.write("computer/directory.db", "a letter");
    const std::string commands = "start\ntype groupName team\ntype gid 600\nanswer Yes\n"
                                 "answer \"Add Group Failed\" OK\nsend addNewGroup:\nshow groupTableView\n";
    const Finished dry = run({"--dry-run", "--script", "-"}, commands);
    const Finished real = run({"--script", "-"}, commands);
    EXPECT_EQ(dry.output, real.output);
    EXPECT_EQ(dry.status, real.status);
    EXPECT_TRUE(
        dry.errors.starts_with("brindle: cannot read the directory " + computer_ + "/directory.db: "));
    EXPECT_EQ(dry.errors.substr(dry.errors.find('\n') + 1), real.errors);
    EXPECT_NE(dry.output.find("output \"nicl: cannot create /groups/team: "), std::string::npos)
        << dry.output;
}

TEST_F(DryRun, NamesTheRootThatItWouldMake) {
    const std::string commands = "start\ntype smbNetBiosName ONE\nplan send updateSMBProperties:\n";
    expectSame(commands, computer_ + "/Shared/Example");
}

} // namespace
