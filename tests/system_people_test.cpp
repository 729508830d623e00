// Accounts of this computer, made by scripts, and how its smbd treats them.

#include "support/InstalledBrindle.h"

#include <atomic>
#include <thread>

namespace {

namespace fs = std::filesystem;

constexpr const char* makeUser = "answer \"Confirm Add New File Sharing Only User\" Yes\n"
                                 "type fullName \"Alice A\"\ntype shortName alice\ntype uid 7201\n"
                                 "select groupPopUp crew\npress addNewUserButton\n";

std::string setPassword(const std::string& password) {
    return "type passwordSecureText1 " + password + "\ntype passwordSecureText2 " + password +
           "\nsend setPassword:\n";
}

/// Watches the arguments of all processes for a text.
class Watch {
  public:
    explicit Watch(std::string text) : text_(std::move(text)) {}

    ~Watch() { stop(); }

    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    /// Returns whether the text was seen.
    bool stop() {
        ends_ = true;
        if (thread_.joinable()) {
            thread_.join();
        }
        return isSeen_;
    }

  private:
    void look() {
        while (!ends_) {
            for (const pid_t process : platform::processIds()) {
                for (const std::string& word : platform::commandLineOf(process)) {
                    isSeen_ = isSeen_ || word.find(text_) != std::string::npos;
                }
            }
        }
    }

    std::string text_;
    std::atomic<bool> ends_ = false;
    std::atomic<bool> isSeen_ = false;
    std::thread thread_{[this] { look(); }};
};

class SystemPeople : public InstalledBrindle {
  protected:
    void SetUp() override {
        InstalledBrindle::SetUp();
        if (!IsSkipped()) {
            fs::permissions(folder_, fs::perms(0777));
            run({"/usr/sbin/groupadd", "-g", "7200", "crew"});
        }
    }

    /// Returns the server's answer to the user's logon; empty when it succeeds.
    static std::string logon(const std::string& user) { return smb("Docs", user, "ls"); }

    static bool refuses(const std::string& answer) { return contains(answer, "NT_STATUS_"); }

    /// Returns the number of the row with that cell.
    static std::string rowOf(const std::string& table, const std::string& cell,
                             const std::string& before = "") {
        const std::string shown = script(before + "show " + table + "\n");
        const std::size_t place = shown.find(cell);
        EXPECT_NE(place, std::string::npos) << shown;
        const std::size_t start = shown.rfind('\n', place) + 1;
        return shown.substr(start, shown.find(' ', start) - start);
    }
};

TEST_F(SystemPeople, ConnectWithTheirPasswordUntilSomethingEndsIt) {
    Watch watch("Wonderland1");
    const std::string made = script(makeDocs() + makeUser + setPassword("Wonderland1"));
    EXPECT_FALSE(contains(made, "output ")) << made;
    EXPECT_FALSE(contains(made, "Wonderland1")) << made;
    EXPECT_TRUE(contains(contents("/etc/passwd"), "\nalice:x:7201:7200:Alice A:/dev/null:/sbin/nologin\n"));
    run({"pwck", "-r", "-q"});
    run({"grpck", "-r"});

    const std::string put = smb("Docs", "alice%Wonderland1", "put /etc/hostname letter");
    EXPECT_FALSE(refuses(put)) << put;
    EXPECT_EQ(ownerOf(folder_ + "/letter"), "alice");
    EXPECT_TRUE(refuses(logon("alice%wrong")));

    // A new number keeps the password, and new files get that number.
    const std::string alice = rowOf("userTableView", "User=\"alice\"");
    const std::string updated = script("answer \"Confirm Update User\" Yes\nrows userTableView " + alice +
                                       "\ntype uid 7301\npress addNewUserButton\n");
    EXPECT_FALSE(contains(updated, "output ")) << updated;
    EXPECT_FALSE(refuses(smb("Docs", "alice%Wonderland1", "put /etc/hostname second")));
    EXPECT_EQ(ownerOf(folder_ + "/second"), "alice");

    script("rows userTableView " + alice + "\npress changePasswordButton\n" + setPassword("Looking2Glass"));
    EXPECT_TRUE(refuses(logon("alice%Wonderland1")));
    EXPECT_FALSE(refuses(logon("alice%Looking2Glass")));

    const std::string deleted = script("answer \"Confirm Delete Selected User\" Yes\nrows userTableView " +
                                       alice + "\npress deleteUserButton\n");
    EXPECT_FALSE(contains(deleted, "output ")) << deleted;
    EXPECT_FALSE(contains(contents("/etc/passwd"), "\nalice:"));
    EXPECT_FALSE(contains(runProgram({"/usr/bin/pdbedit", "-L"}).output, "alice"));
    EXPECT_FALSE(contains(
        smb("Docs", "alice%Looking2Glass", "put /etc/hostname third") + ownerOf(folder_ + "/third"), "alice"))
        << "an unknown user is a guest";
    run({"pwck", "-r", "-q"});
    run({"grpck", "-r"});
    EXPECT_FALSE(watch.stop()) << "a password was in the arguments of a process";
    EXPECT_FALSE(contains(contents(sudoLog), "Wonderland1"));
}

TEST_F(SystemPeople, AreLeftUnchangedWithAReasonIfTheComputerNeedsThem) {
    run({"/usr/sbin/useradd", "-M", "-r", "-u", "150", "machine"});
    const std::string before = contents("/etc/passwd") + contents("/etc/group");
    const std::string chief = rowOf("userTableView", "User=\"chief\"");
    const std::string tables = "check showSystemUsersGroups2 on\ncheck showSystemUsersGroups3 on\n";
    const std::string daemon = rowOf("groupTableView", "Group=\"daemon\"", tables);
    const std::string machine = rowOf("userTableView", "User=\"machine\"");
    const std::string admin = rowOf("groupTableView", "Group=\"admin\"", tables);
    const auto update = [](const std::string& name, const std::string& uid) {
        return "type fullName Somebody\ntype shortName " + name + "\ntype uid " + uid +
               "\nselect groupPopUp users\npress addNewUserButton\n";
    };
    const std::vector<std::pair<std::string, std::string>> cases = {
        {update("root", "0"), "cannot be changed: root is an account that the system itself needs"},
        {update("daemon", "1"), "cannot be changed: daemon is an account of the system"},
        {update("alice", "0"), "cannot be used: number 0 is the system's administrator"},
        {"rows groupTableView " + daemon + "\nrows groupUsersTableView 0\npress addUserToGroupButton\n",
         "daemon is a group of the system"},
        {"rows groupTableView " + admin + "\nrows groupUsersTableView 0\npress addUserToGroupButton\n",
         "cannot be changed: it shows who is in sudo"},
        {"rows userTableView " + machine + "\npress changePasswordButton\n" + setPassword("Wonderland1"),
         "machine is an account of the system"},
    };
    for (const auto& [commands, reason] : cases) {
        const std::string printed = script(tables + commands);
        EXPECT_TRUE(contains(printed, "alert \"Not Possible\" ") && contains(printed, reason))
            << commands << printed;
        EXPECT_FALSE(contains(printed, "\nrun ")) << printed;
    }
    const Finished dry =
        runProgram({"/usr/sbin/runuser", "-u", "chief", "--", "env", "HOME=/home/chief", "LC_ALL=C",
                    prefix + "/bin/brindle", "--system", "--dry-run", "--script", "-"},
                   "answer Donation Cancel\nstart\n" + tables + update("daemon", "1"));
    EXPECT_TRUE(contains(dry.output, "alert \"Not Possible\" ")) << dry.output << dry.errors;
    const std::string tried =
        script(tables + "answer \"Confirm Delete Selected User\" Yes\nrows userTableView " + chief +
               "\npress deleteUserButton\n");
    EXPECT_TRUE(contains(tried, "\noutput ") && contains(tried, "the user who runs Brindle")) << tried;
    EXPECT_EQ(contents("/etc/passwd") + contents("/etc/group"), before);
    // A system group can be a user's own group without listing the user.
    const std::string made =
        script(tables + "answer \"Confirm Add New File Sharing Only User\" Yes\n" + update("alice", "7201"));
    EXPECT_TRUE(contains(made, "\nrun ") && !contains(made, "output ")) << made;
    EXPECT_TRUE(contains(contents("/etc/passwd"), "\nalice:x:7201:100:"));
}

TEST_F(SystemPeople, LoseTheirRightsWithAGroupAndWithAName) {
    const std::string made =
        script(makeDocs() + makeUser + setPassword("Wonderland1") +
               "answer \"Confirm Add New Group\" Yes\ntype groupName band\ntype gid 7202\n"
               "press createNewGroupButton\n");
    EXPECT_FALSE(contains(made, "output ")) << made;
    run({"chown", "root:band", folder_});
    fs::permissions(folder_, fs::perms(0770));
    const auto mayWrite = [](const std::string& user) {
        return !refuses(smb("Docs", user + "%Wonderland1", "put /etc/hostname letter"));
    };
    EXPECT_FALSE(mayWrite("alice"));
    const std::string band = "rows groupTableView " + rowOf("groupTableView", "Group=\"band\"") + "\n";
    const std::string member =
        band + "rows groupUsersTableView " + rowOf("groupUsersTableView", "User=\"alice\"", band) + "\n";
    script(member + "press addUserToGroupButton\n");
    EXPECT_TRUE(contains(contents("/etc/group"), "\nband:x:7202:alice\n"));
    EXPECT_TRUE(mayWrite("alice"));
    script(member + "press removeUserFromGroupButton\n");
    EXPECT_FALSE(mayWrite("alice"));
    script(member + "press addUserToGroupButton\n");
    EXPECT_EQ(outputOfHelper({prefix + "/libexec/brindle-helper", "--system"},
                             {"/usr/bin/nicl", ".", "-create", "/users/alice", "name", "eve"}),
              "");
    EXPECT_TRUE(mayWrite("eve")) << "her password and her groups are kept under her new name";
    EXPECT_FALSE(mayWrite("alice"));
}

TEST_F(SystemPeople, CanBeUndoneAndRedoneExceptForTheirPassword) {
    const auto accounts = [] { return contents("/etc/passwd") + contents("/etc/group"); };
    const auto knownToSamba = [] { return contains(runProgram({"/usr/bin/pdbedit", "-L"}).output, "alice"); };
    const std::string before = accounts();
    script(makeDocs() + makeUser + setPassword("Wonderland1")); // changes 1, 2 and 3
    const std::string made = accounts();
    const auto undo = [](const std::string& number) {
        const std::string printed = script("undo " + number + "\n");
        EXPECT_FALSE(contains(printed, "output ")) << printed;
    };
    const std::string alice = rowOf("userTableView", "User=\"alice\"");
    script("answer \"Confirm Update User\" Yes\nrows userTableView " + alice +
           "\ntype uid 7301\ntype fullName \"Alice B\"\npress addNewUserButton\n");
    EXPECT_TRUE(contains(accounts(), "\nalice:x:7301:7200:Alice B:"));
    undo("4");
    EXPECT_EQ(accounts(), made);
    EXPECT_FALSE(refuses(logon("alice%Wonderland1"))) << "a change keeps the password, and so does its undo";
    run({"/usr/sbin/usermod", "-aG", "audio", "alice"}); // which only the system's own tools change
    script("answer \"Confirm Delete Selected User\" Yes\nrows userTableView " + alice +
           "\npress deleteUserButton\n");
    EXPECT_FALSE(knownToSamba());
    undo("6");
    EXPECT_EQ(accounts(), made);
    EXPECT_FALSE(knownToSamba()) << "a deleted password is not restored";
    undo("2");
    EXPECT_EQ(accounts(), before);
    undo("8");
    EXPECT_EQ(accounts(), made);
}

TEST_F(SystemPeople, OfferTheirPublicFolderIfTheyHaveAHome) {
    run({"/usr/sbin/useradd", "-m", "-u", "7301", "dora"});
    run({"/usr/sbin/useradd", "-M", "-u", "7302", "eve"}); // without a home folder
    const std::string dora = rowOf("userTableView", "User=\"dora\"");
    const std::string shared =
        script("rows userTableView " + dora + "\npress enablePublicSelectedButton\nshow userTableView\n");
    EXPECT_FALSE(contains(shared, "output ")) << shared;
    EXPECT_TRUE(contains(shared, "User=\"dora\" \"Public Shared\"=\"YES\"")) << shared;
    EXPECT_EQ(ownerOf("/home/dora/Public"), "dora");
    EXPECT_TRUE(platform::writeWholeFile("/home/dora/Public/poem", "a poem").isOk());
    fs::permissions("/home/dora", fs::perms(0755));
    const std::string got = smb("dora's Public", "", "get poem /home/poem; put /etc/hostname no");
    EXPECT_EQ(contents("/home/poem"), "a poem") << got;
    EXPECT_FALSE(fs::exists("/home/dora/Public/no")) << "it is read only";

    const std::string eve = rowOf("userTableView", "User=\"eve\"");
    const std::string without = script("rows userTableView " + eve + "\npress enablePublicSelectedButton\n");
    EXPECT_FALSE(contains(without, "output ")) << "the property is written for every user: " << without;
    EXPECT_FALSE(fs::exists("/home/eve"));
    EXPECT_FALSE(contains(run({"/usr/bin/net", "usershare", "list"}), "eve"));

    run({"/usr/sbin/useradd", "-m", "-u", "7303", "finn"});
    fs::create_directory_symlink("/etc", "/home/finn/Public");
    const std::string finn = rowOf("userTableView", "User=\"finn\"");
    const std::string link = script("rows userTableView " + finn + "\npress enablePublicSelectedButton\n");
    EXPECT_TRUE(contains(link, "/home/finn/Public is not a folder; move it away")) << link;
    EXPECT_FALSE(contains(run({"/usr/bin/net", "usershare", "list"}), "finn"));

    script("rows userTableView " + dora + "\npress disablePublicSelectedButton\n");
    EXPECT_TRUE(contains(smb("dora's Public", "", "ls"), "NT_STATUS_BAD_NETWORK_NAME"));
    EXPECT_EQ(contents("/home/dora/Public/poem"), "a poem");

    std::string settings = contents("/etc/samba/smb.conf");
    const std::size_t line = settings.find("usershare allow guests = yes");
    ASSERT_NE(line, std::string::npos);
    settings.replace(line, 28, "usershare allow guests = no");
    ASSERT_TRUE(platform::writeWholeFile("/etc/samba/smb.conf", settings).isOk());
    script("rows userTableView " + dora + "\npress enablePublicSelectedButton\n");
    const std::string offered = run({"/usr/bin/net", "usershare", "info", "dora's Public"});
    EXPECT_TRUE(contains(offered, "path=/home/dora/Public\n") && contains(offered, "guest_ok=n")) << offered;
}

} // namespace
