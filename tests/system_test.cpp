// Brindle on the computer itself, with copies of its accounts that are discarded at the end.

#include "platform/posix/Process.h"
#include "support/OwnComputer.h"
#include "support/Subprocess.h"
#include "support/TestHost.h"
#include "tools/DirectoryTools.h"
#include "tools/UnfinishedChange.h"

#include <algorithm>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Words = std::vector<std::string>;

constexpr uid_t administrator = 1400;

/// Joins the outputs of runs.
std::string said(std::initializer_list<std::string> runs) {
    std::string text;
    for (const std::string& run : runs) {
        text += run;
    }
    return text;
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// The accounts of the test's own computer.
class SystemAccounts : public OwnComputer {
  protected:
    static std::string nicl(Words words) {
        words.insert(words.begin(), ".");
        return tools::runNicl(place(), words).output;
    }

    static std::string dscl(const std::string& name, const std::string& password) {
        return tools::runDscl(place(), Words{".", "-passwd", "/Users/" + name, password}).output;
    }

    /// Makes the runs with which the application makes a user, up to the first one that fails.
    static std::string makeUser(const std::string& name, const std::string& uid, const std::string& gid) {
        const std::string path = "/users/" + name;
        std::string complaint = nicl({"-create", path});
        for (const auto& [property, value] :
             std::vector<std::pair<std::string, std::string>>{{"realname", "Alice A"},
                                                              {"gid", gid},
                                                              {"uid", uid},
                                                              {"sharedDir", "Public"},
                                                              {"hint", ""},
                                                              {"home", "/dev/null"},
                                                              {"passwd", "!"},
                                                              {"shell", "/sbin/nologin"}}) {
            if (complaint.empty()) {
                complaint = value.empty() ? nicl({"-create", path, property})
                                          : nicl({"-create", path, property, value});
            }
        }
        return complaint;
    }

    static std::string makeGroup(const std::string& name, const std::string& gid) {
        const std::string path = "/groups/" + name;
        return said({nicl({"-create", path}), nicl({"-create", path, "gid", gid}),
                     nicl({"-create", path, "passwd", "*"}), nicl({"-create", path, "users"})});
    }

    /// Returns a record as lines such as "name: alice"; empty when there is no record.
    static std::string record(const std::string& path) {
        const Finished read = runProgram({programs + "/niutil", "--system", "-read", ".", path});
        return read.status == 0 ? read.output : "";
    }

    static std::string line(const std::string& file, const std::string& name) {
        const std::string text = "\n" + contents(file);
        const std::size_t start = text.find("\n" + name + ":");
        return start == std::string::npos ? ""
                                          : text.substr(start + 1, text.find('\n', start + 1) - start - 1);
    }

    static std::string sambaAccounts() { return runProgram({"/usr/bin/pdbedit", "-L", "-w"}).output; }

    /// Returns Samba's entry of a user, without the name.
    static std::string sambaEntry(const std::string& name) {
        const std::string entry = runProgram({"/usr/bin/pdbedit", "-L", "-v", name}).output;
        return entry.substr(std::min(entry.find("Account Flags"), entry.size()));
    }

    /// Returns everything about the computer's accounts, including the output of its own checks.
    static std::string accounts() {
        std::string text;
        for (const char* file :
             {"/etc/passwd", "/etc/group", "/etc/shadow", "/etc/gshadow", "/etc/subuid", "/etc/subgid"}) {
            text += contents(file);
        }
        for (const char* checker : {"/usr/sbin/pwck", "/usr/sbin/grpck"}) {
            const Finished checked = runProgram({checker, "-r"});
            text += checked.output + checked.errors;
        }
        return text + sambaAccounts();
    }

    static tools::DirectoryPlace place() {
        return tools::DirectoryPlace::ofComputer(platform::SystemFiles(), administrator);
    }

    static inline const std::string programs = BRINDLE_PROGRAMS;
};

TEST_F(SystemAccounts, AreMadeChangedAndDeletedAsTheComputersOwn) {
    const std::string before = accounts();
    EXPECT_EQ(makeGroup("team", "1600"), "");
    EXPECT_EQ(said({nicl({"-create", "/users/alice"}), nicl({"-create", "/users/alice", "gid", "1600"})}),
              "");
    EXPECT_EQ(record("/users/alice"), "") << "it is listed once it is complete";
    EXPECT_EQ(makeUser("alice", "1501", "1600"), "");
    EXPECT_EQ(line("/etc/passwd", "alice"), "alice:x:1501:1600:Alice A:/dev/null:/sbin/nologin");
    EXPECT_TRUE(line("/etc/shadow", "alice").starts_with("alice:!:"));
    EXPECT_EQ(record("/users/alice"),
              "name: alice\nuid: 1501\ngid: 1600\nrealname: Alice A\nhome: /dev/null\nshell: "
              "/sbin/nologin\npasswd: *\nsharedDir: Public\nhint:\n");
    EXPECT_EQ(makeUser("bob", "70501", "1600"), "");
    EXPECT_EQ(nicl({"-append", "/groups/team", "users", "alice"}), "");
    EXPECT_EQ(nicl({"-append", "/groups/team", "users", "bob", "alice"}), "");
    EXPECT_EQ(line("/etc/group", "team"), "team:x:1600:alice,bob");
    EXPECT_EQ(nicl({"-delete", "/groups/team", "users", "alice"}), "");
    EXPECT_TRUE(contains(nicl({"-delete", "/groups/team", "users", "alice"}), "has no value alice"));
    EXPECT_TRUE(contains(nicl({"-append", "/groups/team", "users", "nobody else"}), "does not exist"));
    EXPECT_EQ(line("/etc/group", "team"), "team:x:1600:bob");
    EXPECT_EQ(nicl({"-create", "/users/alice", "realname", "Alice B"}), "");
    EXPECT_EQ(line("/etc/passwd", "alice"), "alice:x:1501:1600:Alice B:/dev/null:/sbin/nologin");
    EXPECT_TRUE(contains(nicl({"-delete", "/groups/team"}), "primary group"));
    EXPECT_EQ(said({nicl({"-delete", "/users/alice"}), nicl({"-delete", "/users/bob"})}), "");
    EXPECT_EQ(nicl({"-delete", "/groups/team", "users", "bob"}), "") << "a deleted user has left the group";
    EXPECT_EQ(nicl({"-delete", "/groups/team"}), "");
    EXPECT_EQ(accounts(), before);
}

TEST_F(SystemAccounts, KeepTheirPasswordAndPropertiesWhenTheyAreRenamedAndRenumbered) {
    const std::string before = accounts();
    EXPECT_TRUE(contains(dscl("alice", "secret"), "there is no such user"));
    EXPECT_EQ(said({makeGroup("team", "1600"), makeUser("alice", "1501", "1600")}), "");
    EXPECT_TRUE(contains(dscl("alice", ""), "choose one"));
    EXPECT_EQ(dscl("alice", "secret"), "");
    EXPECT_TRUE(line("/etc/shadow", "alice").starts_with("alice:$"));
    const std::string samba = sambaAccounts();
    ASSERT_TRUE(samba.starts_with("alice:1501:")) << samba;
    for (const Words& words :
         {Words{"/usr/bin/pdbedit", "-r", "-K", "1900000000", "-h", "H", "-p", "P", "alice"},
          {"/usr/bin/pdbedit", "-r", "-U", "4242", "alice"},
          {"/usr/bin/net", "cache", "add", "IDMAP/UID2SID/1501", "S-1-1", "99"}}) {
        ASSERT_EQ(runProgram(words).status, 0);
    }
    const std::string entry = sambaEntry("alice");
    {
        Conversation busy({"/usr/bin/setpriv", "--reuid=1501", "--clear-groups", "/usr/bin/cat"});
        EXPECT_EQ(busy.ask("ready", "ready"), "ready");
        EXPECT_TRUE(contains(nicl({"-create", "/users/alice", "name", "eve"}), "used by process"));
        EXPECT_EQ(sambaEntry("alice"), entry);
    }
    EXPECT_EQ(nicl({"-create", "/users/alice", "uid", "1502"}), "");
    EXPECT_EQ(nicl({"-create", "/users/alice", "name", "eve"}), "");
    EXPECT_EQ(sambaAccounts(), "eve:1502:" + samba.substr(std::string("alice:1501:").size()));
    EXPECT_EQ(sambaEntry("eve"), entry);
    EXPECT_FALSE(contains(runProgram({"/usr/bin/net", "cache", "list"}).output, "UID2SID/1501"));
    EXPECT_TRUE(line("/etc/shadow", "eve").starts_with("eve:$"));
    EXPECT_EQ(line("/etc/passwd", "eve"), "eve:x:1502:1600:Alice A:/dev/null:/sbin/nologin");
    EXPECT_TRUE(contains(record("/users/eve"), "sharedDir: Public\n"));
    EXPECT_EQ(nicl({"-append", "/groups/team", "users", "eve"}), "");
    EXPECT_EQ(nicl({"-create", "/groups/team", "hint", "h"}), "");
    EXPECT_EQ(nicl({"-create", "/groups/team", "gid", "1601"}), "");
    EXPECT_EQ(nicl({"-create", "/groups/team", "name", "crew"}), "");
    EXPECT_EQ(record("/groups/crew"), "name: crew\ngid: 1601\npasswd: *\nusers: eve\nhint: h\n");
    EXPECT_TRUE(contains(line("/etc/passwd", "eve"), ":1601:")) << "it is still her group";
    EXPECT_EQ(said({nicl({"-delete", "/users/eve"}), nicl({"-delete", "/groups/crew"})}), "");
    EXPECT_EQ(accounts(), before);
}

TEST_F(SystemAccounts, StayUnchangedIfBrindleMayNotOrCannotChangeThem) {
    ASSERT_EQ(runProgram({"/usr/sbin/useradd", "-l", "-u", "1400", "boss"}).status, 0);
    ASSERT_EQ(runProgram({"/usr/sbin/useradd", "-l", "-u", "1401", "guest"}).status, 0);
    EXPECT_EQ(said({nicl({"-create", "/users/new"}), nicl({"-create", "/users/new", "gid", "1401"})}), "");
    const std::string before = accounts();
    const std::vector<std::pair<Words, std::string>> cases = {
        {{"-delete", "/users/root"}, "the system itself needs"},
        {{"-create", "/users/nobody", "uid", "1444"}, "the system itself needs"},
        {{"-create", "/users/daemon", "name", "demon"}, "an account of the system"},
        {{"-create", "/users/daemon", "realname", "D"}, "from 1000 on"},
        {{"-delete", "/users/boss"}, "the user who runs Brindle"},
        {{"-create", "/users/boss", "name", "chief"}, "the user who runs Brindle"},
        {{"-create", "/users/guest", "name", "boss"}, "there is an account called boss"},
        {{"-create", "/users/guest", "name", "BOSS"}, "the case of letters"},
        {{"-create", "/users/Guest"}, "the case of letters"},
        {{"-create", "/users/guest", "uid", "0"}, "choose another one"},
        {{"-create", "/users/guest", "uid", "1400"}, "another account has this number"},
        {{"-create", "/users/guest", "uid", "-1"}, "give one"},
        {{"-create", "/users/guest", "gid", "0"}, "administer the computer"},
        {{"-create", "/users/guest", "gid", "4711"}, "does not exist"},
        {{"-create", "/users/guest", "realname", "G, Guest"}, "leave it out"},
        {{"-create", "/users/guest", "passwd", "x"}, "dscl"},
        {{"-append", "/users/guest", "shell", "/bin/sh"}, "-create"},
        {{"-create", "/users/guest", "_brindle_account", "made"}, "for itself"},
        {{"-create", "/users/new", "uid", "0"}, "choose another one"},
        {{"-create", "/users/new", "uid", "1400"}, "another account has this number"},
        {{"-create", "/users/none", "uid", "1444"}, "no such record"},
        {{"-create", "/users/max m"}, "a name with a blank"},
        {{"-create", "/users/guest", "name", "-guest"}, "begins with -"},
        {{"-create", "/groups/" + std::string(33, 'g')}, "more than 32"},
        {{"-create", "/groups/guest", "gid", "1400"}, "another account has this number"},
        {{"-delete", "/users/none"}, "nothing was deleted"},
        {{"-append", "/groups/admin", "users", "guest"}, "sudo"},
        {{"-create", "/groups/admin"}, "sudo"},
        {{"-append", "/groups/sudo", "users", "guest"}, "a group of the system"},
        {{"-append", "/groups/daemon", "users", "guest"}, "a group of the system"},
        {{"-delete", "/groups/daemon"}, "a group of the system"},
        {{"-create", "/groups/guest", "name", "boss"}, "there is an account called boss"},
        {{"-delete", "/users/none/guest"}, "name the account alone"},
        {{"-append", "/groups/none/guest", "users", "boss"}, "name the account alone"},
    };
    for (const auto& [words, part] : cases) {
        const std::string complaint = nicl(words);
        EXPECT_TRUE(contains(complaint, part)) << words[0] << " " << words[1] << ": " << complaint;
        EXPECT_EQ(std::ranges::count(complaint, '\n'), 1) << complaint;
    }
    for (const char* name : {"root", "daemon"}) {
        EXPECT_NE(dscl(name, "secret"), "") << name;
    }
    EXPECT_EQ(accounts(), before);
    EXPECT_EQ(nicl({"-create", "/users/root", "sharedDir", "Public"}), "");
    EXPECT_TRUE(contains(record("/users/root"), "sharedDir: Public\n"));
    EXPECT_EQ(nicl({"-create", "/users/root", "uid", "0"}), "") << "this changes nothing";
    EXPECT_EQ(nicl({"-create", "/users/new", "uid", "501"}), "") << "a number that is not in use";
    EXPECT_EQ(nicl({"-create", "/users/new", "realname", "N"}), "") << "Brindle has made it";
    EXPECT_EQ(nicl({"-delete", "/users/guest"}), "");
    EXPECT_EQ(line("/etc/group", "guest"), "guest:x:1401:") << "only the user's record is to be deleted";
}

TEST_F(SystemAccounts, InheritNothingFromAnAccountThatIsGone) {
    EXPECT_EQ(said({makeGroup("team", "1600"), makeUser("alice", "1501", "1600")}), "");
    ASSERT_EQ(runProgram({"/usr/sbin/userdel", "alice"}).status, 0); // done by another program
    EXPECT_EQ(nicl({"-create", "/users/alice"}), "");
    EXPECT_EQ(nicl({"-create", "/users/alice", "home", "/half"}), "");
    EXPECT_EQ(nicl({"-create", "/users/alice"}), "") << "the previous one was never completed";
    EXPECT_EQ(nicl({"-create", "/users/alice", "uid", "1501"}), "");
    EXPECT_EQ(nicl({"-create", "/users/alice", "gid", "1600"}), "");
    EXPECT_EQ(record("/users/alice"),
              "name: alice\nuid: 1501\ngid: 1600\nrealname: \nhome: /dev/null\nshell: "
              "/sbin/nologin\npasswd: *\n");
}

TEST_F(SystemAccounts, KeepTheirPasswordWhenAChangeOfThemIsRefusedOrKilledHalfWay) {
    EXPECT_EQ(said({makeGroup("crew", "1620"), makeUser("carol", "1521", "1620"), dscl("carol", "secret")}),
              "");
    const std::string samba = sambaAccounts();
    {
        Conversation busy({"/usr/bin/setpriv", "--reuid=1521", "--clear-groups", "/usr/bin/cat"});
        EXPECT_EQ(busy.ask("ready", "ready"), "ready");
        EXPECT_TRUE(contains(nicl({"-delete", "/users/carol"}), "used by process"));
    }
    EXPECT_EQ(sambaAccounts(), samba);
    const platform::SystemFiles files;
    const tools::UnfinishedChange change{
        true, {"carol", 1521}, {"dora", 1521}, samba.substr(0, samba.find('\n'))};
    ASSERT_TRUE(change.write(files.unfinishedChange()).isOk());
    ASSERT_EQ(runProgram({"/usr/bin/pdbedit", "-x", "carol"}).status, 0);
    ASSERT_EQ(runProgram({"/usr/sbin/usermod", "-l", "dora", "carol"}).status, 0); // then it was killed
    EXPECT_TRUE(contains(nicl({"-delete", "/users/carol"}), "no such record")) << "any next run finishes it";
    EXPECT_EQ(sambaAccounts(), "dora" + samba.substr(std::string("carol").size()));
    EXPECT_TRUE(contains(record("/users/dora"), "sharedDir: Public\n"));
    EXPECT_EQ(contents(files.unfinishedChange()), "");
    EXPECT_EQ(said({nicl({"-delete", "/users/dora"}), nicl({"-delete", "/groups/crew"}), sambaAccounts()}),
              "");
}

TEST_F(SystemAccounts, AreChangedByOneRunAfterAnother) {
    constexpr int writers = 4;
    std::vector<pid_t> children;
    for (int writer = 0; writer < writers; ++writer) { // the first one makes the store
        const std::string number = std::to_string(writer);
        if (children.emplace_back(::fork()) == 0) {
            ::_exit(makeGroup("team" + number, "161" + number).empty() &&
                            nicl({"-create", "/config/Brindle/share" + number}).empty()
                        ? 0
                        : 1);
        }
    }
    for (const pid_t child : children) {
        int status = 1;
        EXPECT_TRUE(::waitpid(child, &status, 0) == child && status == 0);
    }
    for (int writer = 0; writer < writers; ++writer) {
        EXPECT_NE(line("/etc/group", "team" + std::to_string(writer)), "");
        EXPECT_NE(record("/config/Brindle/share" + std::to_string(writer)), "");
    }
}

TEST_F(SystemAccounts, AreWrittenByTheHelperForTheUserWhoCalledSudo) {
    const auto request = [](const Words& words, const std::string& user) {
        return outputOfHelper({"/usr/bin/env", "SUDO_UID=" + user, programs + "/brindle-helper", "--system"},
                              words);
    };
    ASSERT_EQ(runProgram({"/usr/sbin/useradd", "-l", "-u", "1410", "chief"}).status, 0);
    const Words remove = {"/usr/bin/nicl", ".", "-delete", "/users/chief"};
    EXPECT_TRUE(contains(request(remove, "1410"), "the user who runs Brindle"));
    EXPECT_EQ(request({"/usr/bin/dscl", ".", "-passwd", "/Users/chief", "s3cret pass:word"}, "1410"), "");
    EXPECT_TRUE(line("/etc/shadow", "chief").starts_with("chief:$"));
    ASSERT_EQ(runProgram({"/usr/sbin/usermod", "-L", "chief"}).status, 0);
    EXPECT_EQ(request({"/usr/bin/dscl", ".", "-passwd", "/Users/chief", "another"}, "1410"), "");
    EXPECT_TRUE(line("/etc/shadow", "chief").starts_with("chief:!$")) << "it stays locked";
    EXPECT_TRUE(sambaAccounts().starts_with("chief:1410:"));
    EXPECT_EQ(request(remove, "1411"), "");
    EXPECT_EQ(line("/etc/passwd", "chief"), "");
    EXPECT_EQ(sambaAccounts(), "");
}

} // namespace

int main(int argc, char** argv) {
    return runTestsOnOwnComputer(argc, argv);
}
