#include "platform/foundation/NSDictionary.h"
#include "platform/host/DirectoryAccounts.h"
#include "platform/host/HostProcesses.h"
#include "platform/posix/Process.h"
#include "platform/samba/SambaAccounts.h"
#include "platform/samba/ServerProcesses.h"
#include "support/DirectoryFixture.h"
#include "support/RootFixture.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

using Words = std::vector<std::string>;

std::string contents(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// Runs `work` in that many processes at once. Returns true when each returned true.
template <class Work>
bool inProcesses(int count, Work work) {
    for (int index = 0; index < count; ++index) {
        if (fork() == 0) {
            _exit(work(index) ? 0 : 1);
        }
    }
    bool allWell = true;
    for (int status = 0; wait(&status) > 0;) {
        allWell = allWell && status == 0;
    }
    return allWell;
}

} // namespace

class Tools : public DirectoryFixture {};

TEST_F(Tools, NiclMakesChangesAndDeletesPropertiesInPlace) {
    struct Step {
        Words words;
        std::string record;
    };

    const std::array steps{
        Step{{"-create", "/groups/staff"}, "name: staff\n"},
        Step{{"-create", "/groups/staff", "gid", "20"}, "name: staff\ngid: 20\n"},
        Step{{"-append", "/groups/staff", "users", "ada", "bob"}, "name: staff\ngid: 20\nusers: ada bob\n"},
        Step{{"-create", "/groups/staff", "gid", "-1", "--x"}, "name: staff\ngid: -1 --x\nusers: ada bob\n"},
        Step{{"-create", "/groups/staff"}, "name: staff\ngid: -1 --x\nusers: ada bob\n"},
        Step{{"-append", "/groups/staff", "users", "ada"}, "name: staff\ngid: -1 --x\nusers: ada bob ada\n"},
        Step{{"-delete", "/groups/staff", "users", "ada"}, "name: staff\ngid: -1 --x\nusers: bob\n"},
        Step{{"-delete", "/groups/staff", "users", "bob"}, "name: staff\ngid: -1 --x\nusers:\n"},
        Step{{"-delete", "/groups/staff", "gid"}, "name: staff\nusers:\n"},
        Step{{"-create", "/groups/staff", "gid", "21"}, "name: staff\nusers:\ngid: 21\n"},
    };
    for (const auto& step : steps) {
        EXPECT_EQ(nicl(step.words), "");
        EXPECT_EQ(record("/groups/staff"), step.record);
    }
    EXPECT_EQ(nicl({"-create", "/groups/staff", "name", "crew"}), "");
    EXPECT_EQ(record("/groups/crew"), "name: crew\nusers:\ngid: 21\n");
    EXPECT_EQ(nicl({"-create", "/config/.."}), "");
    EXPECT_EQ(nicl({"-create", "/config/../child"}), "");
    EXPECT_EQ(nicl({"-delete", "/config/.."}), "");
    EXPECT_TRUE(contains(record("/config/../child"), "No such directory"));
}

TEST_F(Tools, NiclRefusesInOneLineAndChangesNothing) {
    nicl({"-create", "/users/ada"});
    nicl({"-create", "/users/bob"});
    nicl({"-create", "/users/ünï"});
    nicl({"-create", "/users/ada", "mail", "one", "two"});
    nicl({"-create", "/groups/staff"});
    nicl({"-create", "/config/Brindle/Docs"});
    EXPECT_EQ(nicl({"-create", "/users"}), "") << "it exists already and stays unchanged";
    const std::array refused{
        Words{"-create", "/nowhere/x"},
        Words{"-create", "/users//x"},
        Words{"-create", "/users/"},
        Words{"-create", "users/x"},
        Words{"-create", "/users/x", "uid", "5"},
        Words{"-create", "/users/a,b"},
        Words{"-create", "/users/a:b"},
        Words{"-create", "/users/a\tb"},
        Words{"-create", "/users/ada", "realname", "A\nB"},
        Words{"-create", "/users/ada", "real\x7fname", "A"},
        Words{"-create", "/users/ada", "name", "bob"},
        Words{"-create", "/users/Bob"},
        Words{"-create", "/users/ÜNÏ"},
        Words{"-create", "/users/ada", "name", "BOB"},
        Words{"-create", "/users/ada", "name", ""},
        Words{"-create", "/users/ada", "name", "a/b"},
        Words{"-create", "/users/ada", "name"},
        Words{"-create", "/users", "name", "people"},
        Words{"-append", "/users/ada", "name", "x"},
        Words{"-append", "/users/ada", "mail"},
        Words{"-append", "/groups/staff", "users", "a,b"},
        Words{"-append", "/groups/staff", "users", "a/b"},
        Words{"-create", "/config/Brindle/[x"},
        Words{"-create", "/config/Brindle/x]"},
        Words{"-create", "/config/Brindle/ x"},
        Words{"-create", "/config/Brindle/Docs", "name", "x "},
        Words{"-create", "/config/Brindle/Docs", "directory_path", "/tmp\\"},
        Words{"-create", "/config/Brindle/Docs", "directory_path", "/tmp\\ "},
        Words{"-create", "/config/Brindle/Docs", "directory_path", " /tmp"},
        Words{"-create", "/config/Brindle/Docs/x"},
        Words{"-create", "/users/ada/x"},
        Words{"-create", "/groups/staff/x"},
        Words{"-create", "/config/Brindle/Global"},
        Words{"-create", "/config/Brindle/G lobals"},
        Words{"-create", "/config/Brindle/PrinterS"},
        Words{"-create", "/config/Brindle/Docs", "name", "HOMES"},
        Words{"-delete", "/"},
        Words{"-delete", "/config"},
        Words{"-delete", "/config/Brindle"},
        Words{"-delete", "/users/carl"},
        Words{"-delete", "/users/ada", "uid"},
        Words{"-delete", "/users/ada", "mail", "one", "three"},
        Words{"-delete", "/users/ada", "name"},
        Words{"-move", "/users/ada"},
    };
    for (const auto& words : refused) {
        const std::string said = nicl(words);
        EXPECT_EQ(std::ranges::count(said, '\n'), 1) << words[1];
        EXPECT_TRUE(said.starts_with("nicl: cannot ") || said.starts_with("usage: ")) << said;
    }
    EXPECT_EQ(record("/users/ada"), "name: ada\nmail: one two\n");
    EXPECT_EQ(record("/config/Brindle/Docs"), "name: Docs\n");
    EXPECT_EQ(tools::runNireport(Words{".", "/users", "name"}).output, "ada\t\nbob\t\nünï\t\n");
    EXPECT_EQ(nicl({"-create", "/users"}), "") << "it exists already and stays unchanged";
    EXPECT_EQ(nicl({"-create", "/users/ada", "name", "Ada"}), "") << "no other user has this name";
    EXPECT_EQ(nicl({"-delete", "/users/Ada", "mail", "one"}), "");
    EXPECT_EQ(nicl({"-delete", "/config/Brindle/Docs"}), "");
}

TEST_F(Tools, ThatRunTogetherWaitForEachOtherAndLoseNothing) {
    nicl({"-create", "/groups/staff"});
    constexpr int writers = 8;
    EXPECT_TRUE(inProcesses(writers, [this](int index) {
        std::string said;
        for (const char* suffix : {"a", "b", "c"}) {
            said += nicl({"-append", "/groups/staff", "users", "user" + std::to_string(index) + suffix});
        }
        return said.empty();
    }));
    const std::string members = record("/groups/staff");
    EXPECT_EQ(std::ranges::count(members, ' '), 1 + 3 * writers) << members;
}

TEST_F(Tools, WrongOptionsEndWithTwoAndRightOnesLeaveTheOtherWords) {
    std::string root = (host.root() / "other").string();
    std::array<std::string, 6> words{"nicl", "--root", root, ".", "-create", "/users/--system"};
    std::array<char*, 6> pointers{};
    std::ranges::transform(words, pointers.begin(), [](std::string& word) { return word.data(); });
    EXPECT_EQ(tools::directoryToolMain("nicl", static_cast<int>(pointers.size()), pointers.data()), 0);
    const tools::ToolResult deleted =
        tools::runNicl(tools::DirectoryPlace::ofRoot(root), Words{".", "-delete", "/users/--system"});
    EXPECT_EQ(deleted.output, "");
    for (const char* option : {"--nonsense", "--root"}) {
        words[1] = option;
        std::array<char*, 2> two{words[0].data(), words[1].data()};
        EXPECT_EQ(tools::directoryToolMain("nicl", 2, two.data()), 2) << option;
    }
}

TEST_F(Root, IsMadeOnceByProgramsThatStartTogetherAndKeepsExistingFiles) {
    host.write("new root/etc/smb.conf", "[mine]\n");
    EXPECT_TRUE(inProcesses(4, [this](int index) {
        return root.makeIfMissing().isOk() &&
               nicl({"-create", "/config/Brindle/share" + std::to_string(index)}).empty();
    }));
    EXPECT_EQ(host.read("new root/etc/smb.conf"), "[mine]\n");
    EXPECT_TRUE(NSMutableDictionary::dictionaryWithContentsOfFile(
                    root.map("/Library/Preferences/com.apple.AppleFileServer.plist"))
                    .has_value());
    platform::Store store(root.storeFile());
    const Words shares{"config", "Brindle"};
    EXPECT_EQ(store.children(store.find(shares).value()).records().size(), 4U);
    const passwd* me = getpwuid(getuid());
    ASSERT_NE(me, nullptr);
    const Words admin{"groups", "admin"};
    const auto members = store.values(store.find(admin).value(), "users").value();
    EXPECT_EQ(std::ranges::count(members, std::string(me->pw_name)), 1);
    const Words user{"users", me->pw_name};
    const auto record = store.find(user).value();
    EXPECT_EQ(store.values(record, "uid"), Words{std::to_string(getuid())});
    EXPECT_EQ(store.values(record, "passwd"), Words{"*"});
    EXPECT_TRUE(store.find(Words{"users", "root"}));
    for (const char* name : {"daemon", "bin", "sys", "nobody"}) {
        EXPECT_FALSE(store.find(Words{"users", name})) << name << " is not somebody to share with";
        EXPECT_FALSE(store.find(Words{"groups", name})) << name;
    }
}

TEST_F(Root, ConfigurationOfTheServersDaemonsOverridesTheIncludedFile) {
    if (access("/usr/bin/testparm", X_OK) != 0) {
        GTEST_SKIP() << "no testparm on this machine: install samba-common-bin";
    }
    // As in an smb.conf that was copied from the computer's own; it ends in a share.
    const std::string computer = (host.root() / "computer").string();
    host.write(
        "new root/etc/smb.conf",
        "[global]\nserver string = Mine\nprivate dir = " + computer + "\nstate directory = " + computer +
            "\npassdb backend = tdbsam:" + computer + "/passdb.tdb\nunix password sync = yes\n" +
            "add user script = /usr/sbin/useradd %u\nconfig backend = registry\n[docs]\npath = /srv\n");
    ASSERT_TRUE(root.makeIfMissing().isOk());
    const std::string file = platform::SambaAccounts(root.sambaPaths()).configurationFile();
    const std::string seen =
        platform::runProcess({{"/usr/bin/testparm", "-s", file}, platform::ErrorOutput::WithOutput, {}})
            ->output;
    EXPECT_TRUE(contains(seen, "server string = Mine\n")) << seen;
    EXPECT_TRUE(contains(seen, "[docs]\n")) << seen;
    EXPECT_TRUE(contains(seen, "tdbsam:" + root.sambaPaths().folder + "/private/passdb.tdb\n")) << seen;
    for (const std::string& spoiled : {computer, std::string("unix password sync"), std::string("useradd")}) {
        EXPECT_FALSE(contains(seen, spoiled)) << seen;
    }
}

TEST_F(Root, AccountsAreUpToDateAtOnceInNamesAndInTheServersLists) {
    ASSERT_TRUE(root.makeIfMissing().isOk());
    const platform::DirectoryAccounts names(root.storeFile());
    const platform::SambaAccounts server(root.sambaPaths());
    EXPECT_EQ(names.userName(70501), std::nullopt);
    const std::array changes{
        Words{"-create", "/users/alice"},
        Words{"-create", "/users/alice", "uid", "70501"},
        Words{"-create", "/users/alice", "gid", "-2"},
        Words{"-create", "/users/alice", "realname", "A: B"},
        Words{"-create", "/groups/band"},
        Words{"-create", "/groups/band", "gid", "70502"},
        Words{"-append", "/groups/band", "users", "alice", "bob"},
    };
    for (const auto& words : changes) {
        EXPECT_EQ(nicl(words), "");
    }
    EXPECT_EQ(names.userName(70501), "alice");
    EXPECT_EQ(names.userId("alice").valueOr(std::nullopt), 70501U);
    EXPECT_EQ(names.groupName(70502), "band");
    EXPECT_EQ(names.userName(0), "root");
    EXPECT_TRUE(contains(contents(server.passwdFile()), "\nalice:x:70501:65534:A  B::\n"));
    EXPECT_TRUE(contains(contents(server.groupFile()), "\nband:x:70502:alice,bob\n"));
    EXPECT_EQ(nicl({"-delete", "/users/alice"}), "");
    EXPECT_EQ(names.userName(70501), std::nullopt);
    EXPECT_FALSE(contains(contents(server.passwdFile()), "alice"));
}

TEST_F(Root, OnlyProcessesOfItsOwnServerAreListed) {
    platform::HostProcesses processes([](pid_t process) { return process != 2; });
    std::FILE* listing = processes.open("printf '1\\n2\\n3\\n4'", "r");
    ASSERT_NE(listing, nullptr);
    std::array<char, 64> text{};
    const std::size_t size = std::fread(text.data(), 1, text.size(), listing);
    EXPECT_EQ(std::string(text.data(), size), "1\n3\n4");
    EXPECT_EQ(processes.close(listing), 0);

    const std::string self = std::to_string(getpid());
    ::setenv("COLUMNS", "12", 1); // as terminals export it: the program's name no longer fits
    listing = processes.open("/bin/ps -ax | grep tools_test | grep -v grep | awk '{print $1}'", "r");
    ::unsetenv("COLUMNS");
    ASSERT_NE(listing, nullptr);
    std::string listed = "\n";
    for (int byte = std::fgetc(listing); byte != EOF; byte = std::fgetc(listing)) {
        listed += static_cast<char>(byte);
    }
    EXPECT_EQ(processes.close(listing), 0);
    EXPECT_TRUE(contains(listed, "\n" + self + "\n")) << listed;
    const std::string configuration = platform::SambaAccounts(root.sambaPaths()).configurationFile();
    for (const pid_t process : {getpid(), 1, 0}) {
        EXPECT_FALSE(platform::isServerOrChildWith(process, configuration)) << process;
    }
}
