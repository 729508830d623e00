#include "platform/host/SystemComputer.h"
#include "platform/host/SystemHost.h"
#include "platform/netinfo/AccountLines.h"
#include "platform/netinfo/LocalDomain.h"
#include "platform/netinfo/Store.h"
#include "platform/samba/InstalledSamba.h"
#include "support/Subprocess.h"
#include "support/TestHost.h"
#include "tools/HelperCopy.h"
#include "tools/HelperService.h"
#include "tools/SmbConfCheck.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <iterator>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;

TEST(SystemHost, FindsTheFilesOfTheInstalledServerAndItsOwn) {
    const auto build =
        platform::sambaBuildOf("Paths:\n   SBINDIR: /usr/sbin\n   CONFIGFILE: /opt/my samba/smb.conf\n"
                               "   PIDDIR: /run/samba\n   CONFIGFILE_OF: no\n");
    EXPECT_EQ(build.configFile, "/opt/my samba/smb.conf");
    EXPECT_EQ(build.pidFolder, "/run/samba");
    EXPECT_EQ(platform::sambaBuildOf("").configFile, "/etc/samba/smb.conf");
    const platform::SystemFiles files("/prefix");
    EXPECT_EQ(platform::systemFileFor("/etc/smb.conf", files), platform::sambaBuild().configFile);
    EXPECT_EQ(platform::systemFileFor("/Library/Preferences/com.apple.AppleFileServer.plist", files),
              files.appleFileServer());
    EXPECT_EQ(platform::systemFileFor("/etc/passwd", files), "/etc/passwd");
}

TEST(SystemHost, ShowsTheComputerAtAFirstStartAndWritesNothing) {
    const TestHost test;
    const std::vector<std::string> environment = {"HOME=" + test.home().string(),
                                                  "XDG_CONFIG_HOME=", "LC_ALL=C", "XDG_STATE_HOME="};
    const fs::path own = test.root() / "own";
    for (const char* table : {"shares", "users", "groups"}) {
        const Finished printed = runProgram(
            {BRINDLE_PROGRAMS "/brindle", "--system", "--root", own, "--print", table}, {}, environment);
        EXPECT_EQ(printed.status, 0) << printed.errors;
        EXPECT_NE(printed.output, "");
    }
    const Finished script =
        runProgram({BRINDLE_PROGRAMS "/brindle", "--system", "--root", own, "--script", "-"},
                   "answer Donation Cancel\nstart\nshow idleDisconnectTime tcpPort\n", environment);
    EXPECT_NE(script.output.find("tcpPort \"548\""), std::string::npos)
        << "the AFP settings are those of a new root";
    EXPECT_FALSE(fs::exists(own));
    std::vector<std::string> written;
    for (const auto& entry : fs::recursive_directory_iterator(test.home())) {
        if (entry.is_regular_file()) {
            written.push_back(entry.path().lexically_relative(test.home()));
        }
    }
    EXPECT_EQ(written, std::vector<std::string>{".config/brindle/defaults.plist"})
        << "the launches are counted";
}

TEST(SystemHost, SaysWhatTheComputerLacksInOneLine) {
    const TestHost test;
    EXPECT_EQ(platform::missingText({"/usr/sbin/smbd", true, ""}), "");
    const std::string text = platform::missingText({"", false, "sudo is not installed (package sudo)"});
    for (const char* package : {"(package samba)", "(package passwd)", "(package sudo)"}) {
        EXPECT_NE(text.find(package), std::string::npos) << text;
    }
    EXPECT_EQ(text.find('\n'), std::string::npos);
}

TEST(SystemHost, DistinguishesProgramsAccountsFromPeoplesAndThoseThatBrindleMade) {
    TestHost test;
    test.write("passwd", "root:x:0:0::/root:/bin/sh\ngames:x:105:60::/:/bin/sh\nmade:x:501:501::/:/bin/sh\n"
                         "stale:x:502:501::/:/bin/sh\nalice:x:1000:1000::/home/alice:/bin/sh\n"
                         "nobody:x:65534:65534::/:/bin/sh\n");
    test.write("group", "root:x:0:\nstaff:x:50:\nmail:x:8:\ncrew:x:600:\nalice:x:1000:\n");

    struct Domain : platform::LocalDomain {
        explicit Domain(fs::path folder) : folder_(std::move(folder)) {}

        [[nodiscard]] std::string storeFile() const override { return folder_ / "directory.db"; }

        [[nodiscard]] std::optional<platform::AccountFiles> accountFiles() const override {
            return platform::AccountFiles{folder_ / "passwd", folder_ / "group"};
        }

        fs::path folder_;
    };

    const Domain domain(test.root());
    platform::Store store(domain.storeFile(), platform::Store::Opening::Create);
    const auto make = [&store](std::int64_t folder, const char* name, const char* property,
                               const char* number) {
        const auto record = store.addRecord(folder, name);
        store.setValues(record, property, std::array{std::string(number)});
        store.setValues(record, platform::accountStateProperty,
                        std::array{std::string(platform::accountStateMade)});
    };
    const auto users = store.addRecord(platform::Store::root, "users");
    make(users, "made", "uid", "501");
    make(users, "stale", "uid", "777"); // the number of another account that had the name
    make(store.addRecord(platform::Store::root, "groups"), "crew", "gid", "600");
    ASSERT_TRUE(store.commit().isOk());
    const platform::SystemAccounts found = platform::systemAccountsOf(domain, {});
    EXPECT_EQ(found.users, (std::set<std::string>{"games", "root", "stale"}));
    EXPECT_EQ(found.groups, (std::set<std::string>{"mail", "root"}));
}

TEST(SystemHost, SaysWhereTheServerListens) {
    const TestHost test;
    // As the kernel writes it: all addresses, one address, another port, and an open connection.
    const char* const four = "  sl  local_address rem_address   st\n"
                             "   0: 00000000:01BD 00000000:0000 0A\n   1: 0100007F:008B 00000000:0000 0A\n"
                             "   2: 00000000:0016 00000000:0000 0A\n   3: 0100007F:01BD 0100007F:9999 01\n";
    EXPECT_EQ(platform::listeningPlaces(four), (std::vector<std::string>{"*:445", "127.0.0.1:139"}));
    const char* const six = "   0: 00000000000000000000000001000000:01BD 0:0 0A\n";
    EXPECT_EQ(platform::listeningPlaces(six), std::vector<std::string>{"[::1]:445"});
    const std::string text = platform::serverText({7, 1764072000, {"*:445", "*:139"}});
    EXPECT_TRUE(text.starts_with("The SMB server has been running since 2025-11-2")) << text;
    EXPECT_TRUE(text.ends_with("listening on *:445, *:139.")) << text;
    EXPECT_NE(platform::serverText({}).find("is not running"), std::string::npos);
}

TEST(SystemHost, StartsTheServerThroughTheComputersServiceManager) {
    const TestHost test;
    const auto commands = [&] {
        std::string text;
        for (const bool isStart : {true, false}) {
            for (const std::string& word : tools::serviceCommand(isStart, test.root())) {
                text += word + " ";
            }
        }
        return text;
    };
    EXPECT_EQ(commands(), "/usr/sbin/service smbd start /usr/sbin/update-rc.d smbd enable ");
    fs::create_directories(test.root() / "run/systemd/system");
    EXPECT_EQ(commands(), "/usr/bin/systemctl start smbd /usr/bin/systemctl enable smbd ");
    fs::create_directories(test.root() / "lib/systemd/system/smb.service");
    EXPECT_EQ(commands(), "/usr/bin/systemctl start smb /usr/bin/systemctl enable smb ");
}

TEST(SmbConf, IsRefusedIfTheServerCouldUseTheOldTextButNotTheNewOne) {
    if (platform::sambaCommand("testparm").empty()) {
        GTEST_SKIP() << "no testparm on this machine: install samba-common-bin";
    }

    struct Case {
        const char* text;
        const char* complaint; ///< a part of the complaint; null when the text can be used
    };

    const std::vector<Case> cases = {
        {"", nullptr},
        {"[global]\n  workgroup = HOME\n[Docs]\n  path = /srv\n", nullptr},
        {"[global]\nencrypt passwords = yes\n", nullptr}, // deprecated, but known
        {"[Docs]\ncomment = no path yet\n", nullptr},
        {"[Docs]\npath = /srv\nworkgroup = HOME\n", nullptr}, // passed over by the server
        {"[global]\nsecurity = SHARE\nmap to guest = Never\n", nullptr},
        {"[global]\n\tSecurity =share\r\nworkgroup = HOME\n", nullptr},
        {"[global]\nsecurity = SHARE\n[Docs]\nread only = perhaps\n", "not boolean"},
        {"[global]\nsecurity = SHARES\n", "SHARES"},
        {"[global]\nfoo bar = 3\n", "Unknown parameter encountered: \"foo bar\""},
        {"[Docs]\nfoo bar = 3\n", "Unknown parameter encountered: \"foo bar\""},
        {"[Docs\npath = /srv\n", "Error loading services"},
        {"[Docs]\ncreate mode = 9z\n", "Invalid octal number"},
        {"[global]\nwins support = yes\nwins server = 10.0.0.1\n", "ERROR: both"},
    };
    for (const Case& each : cases) {
        const std::string complaint = tools::complaintAboutSmbConf(each.text).value_or("");
        EXPECT_EQ(complaint.empty(), each.complaint == nullptr) << each.text << complaint;
        EXPECT_NE(complaint.find(each.complaint == nullptr ? "" : each.complaint), std::string::npos)
            << each.text << complaint;
    }

    TestHost test;
    test.write("smb.conf", "[global]\n");
    test.write("new.conf", "[global]\nfoo bar = 3\n");
    const auto copy = [&](const char* source) {
        return tools::copyIntoPlace((test.root() / source).string(), (test.root() / "smb.conf").string(),
                                    ::getuid(), &tools::checkSmbConf)
            .text();
    };
    EXPECT_NE(copy("new.conf").find("foo bar"), std::string::npos);
    EXPECT_EQ(test.read("smb.conf"), "[global]\n");
    EXPECT_FALSE(fs::exists(test.root() / "smb.conf.before-brindle")) << "a refusal changes nothing";
    test.write("smb.conf", "[global]\nunknown = 1\n");
    EXPECT_EQ(copy("new.conf"), "") << "a text with the same fault may be replaced";
    EXPECT_EQ(test.read("smb.conf.before-brindle"), "[global]\nunknown = 1\n");
}

} // namespace
