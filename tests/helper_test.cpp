#include "platform/foundation/NSFileManager.h"
#include "platform/samba/SambaAccounts.h"
#include "platform/security/HelperProtocol.h"
#include "support/HelperFixture.h"
#include "support/Subprocess.h"
#include "tools/HelperFolders.h"

#include <csignal>
#include <fstream>
#include <sstream>
#include <tuple>

namespace {

TEST_F(HelperTest, RefusesWhatIsNotForSharingAndSaysWhy) {
    const fs::path shared = folder("shared");
    test_.write("file", "");
    fs::create_directory_symlink("/etc", test_.root() / "link");
    std::ostringstream asItIs; // the present mode, so that even a broken helper changes nothing here
    asItIs << std::oct << modeOf("/etc");

    const std::vector<std::tuple<std::string, std::vector<std::string>, std::string>> cases = {
        {"/bin/chmod", {asItIs.str(), "/etc"}, "folder of the system"},
        {"/bin/chmod", {asItIs.str(), (test_.root() / "link").string()}, "folder of the system"},
        {"/bin/chmod", {asItIs.str(), "/proc/self/root/etc/../etc"}, "folder of the system"},
        {"/bin/chmod", {"755", "/"}, "folder of the system"},
        {"/bin/chmod", {"755", "/home/"}, "folder of the system"},
        {"/bin/chmod", {"755", "/usr/bin"}, "folder of the system"},
        {"/usr/sbin/chown", {":", "/var"}, "folder of the system"},
        {"/bin/chmod", {"600", (test_.root() / "file").string()}, "Not a directory"},
        {"/bin/chmod", {"-R", shared.string()}, "not a mode"},
        {"/bin/chmod", {"1777", shared.string()}, "not a mode"},
        {"/bin/chmod", {"-R", "755", shared.string()}, "wrong arguments"},
        {"/usr/sbin/chown", {"-R:", shared.string()}, "no such user"},
        {"/usr/sbin/chown", {"0:", shared.string()}, "no such user"},
        {"/usr/sbin/chown", {":--help", shared.string()}, "no such group"},
        {"/bin/cp", {source_, "/etc/passwd"}, "not one of the settings files"},
        {"/bin/cp", {source_, target_.string()}, "not one of the settings files"},
        {"/bin/kill", {"-9", std::to_string(::getpid())}, "wrong arguments"},
        {"/bin/kill", {"-1", std::to_string(::getpid())}, "not a file server"},
        {"/bin/kill", {"-1", "-1"}, "is not a process"},
        {"/usr/bin/smbstatus", {"-s", "/etc/shadow"}, "wrong arguments"},
        {"/usr/bin/smbcontrol", {"smbd", "close-share", "*"}, "is not a share's name"},
        {"/usr/bin/smbcontrol", {"smbd", "kill-client-ip", "tower"}, "is not an IP address"},
        {"/usr/bin/smbcontrol", {"smbd", "shutdown", "1"}, "wrong arguments"},
        {"/usr/bin/smbcontrol", {"1", "close-share", "Docs"}, "wrong arguments"},
        {"/bin/rm", {"x"}, "not on the list"},
    };
    for (const auto& [tool, arguments, why] : cases) {
        const std::string said = run(tool, arguments);
        EXPECT_NE(said.find(why), std::string::npos) << tool << " said: " << said;
    }
}

TEST(SystemFolders, AreThoseThatProgramsOfAllUsersDependOn) {
    const struct stat other {}; // of no existing folder

    const auto isSystem = [&](const char* path, tools::FolderHost host) {
        return tools::isSystemFolder(path, other, host);
    };
    for (const tools::FolderHost host : {tools::FolderHost::Embedded, tools::FolderHost::Computer}) {
        for (const char* path : {"/tmp", "/var/lib", "/run", "/run/sudo/ts", "/run/media", "/etc/samba"}) {
            EXPECT_TRUE(isSystem(path, host)) << path;
        }
        for (const char* path : {"/tmp/docs", "/tmpdocs", "/var/library", "/run/media/ada/Stick", "/running",
                                 "/etcetera", "/srv", "/mnt", "/home/ada", "/home/ada/ssh"}) {
            EXPECT_FALSE(isSystem(path, host)) << path;
        }
    }
    for (const char* path : {"/var/lib/docs", "/var/spool/cron", "/home/ada/.ssh", "/home/ada/.gnupg/keys"}) {
        EXPECT_TRUE(isSystem(path, tools::FolderHost::Computer)) << path;
        EXPECT_FALSE(isSystem(path, tools::FolderHost::Embedded)) << path;
    }
    EXPECT_TRUE(tools::isSystemFolder("/mnt/elsewhere", statusOf("/tmp"), tools::FolderHost::Embedded))
        << "the same folder under another path";
}

TEST_F(HelperTest, ChangesAFoldersModeBelow01000Only) {
    const fs::path shared = folder("-R");
    ASSERT_EQ(::chmod(shared.c_str(), 03700), 0);
    EXPECT_EQ(run("/bin/chmod", {"51", shared.string()}), "");
    EXPECT_EQ(modeOf(shared), 03051U);
    EXPECT_EQ(run("/bin/chmod", {"0", shared.string()}), "");
    EXPECT_EQ(run("/bin/chmod", {"755", shared.string()}), "")
        << "its owner may open a folder that nobody may read";
    const fs::path inside = shared / "inside";
    fs::create_directory(inside);
    fs::permissions(shared, fs::perms::all); // anybody could rename its contents
    EXPECT_EQ(run("/bin/chmod", {"700", inside.string()}), "");
    const platform::Status status = tools::changeMode("755", inside.string(), tools::FolderHost::Computer);
    EXPECT_NE(status.text().find("could be replaced by anybody"), std::string::npos) << status.text();
    EXPECT_EQ(modeOf(inside) & 0777U, 0700U);
    ASSERT_EQ(::chmod(shared.c_str(), 01777), 0);
    EXPECT_TRUE(tools::changeMode("755", inside.string(), tools::FolderHost::Computer).isOk());
}

TEST_F(HelperTest, GivesAFolderToAnAccountOfTheDirectoryBeforeOneOfTheComputer) {
    const fs::path shared = folder("shared");
    const uid_t uid = ::getuid() == 0 ? 4242 : ::getuid(); // only root gives folders away
    for (const std::string& value : {std::string("abc"), std::to_string(uid)}) {
        run("/usr/bin/nicl", {".", "-create", "/users/alice"});
        EXPECT_EQ(run("/usr/bin/nicl", {".", "-create", "/users/alice", "uid", value}), "");
        const std::string said = run("/usr/sbin/chown", {"alice:", shared.string()});
        EXPECT_EQ(said.empty(), value != "abc") << said;
    }
    EXPECT_EQ(statusOf(shared).st_uid, uid);
    EXPECT_EQ(run("/usr/sbin/chown", {":", shared.string()}), "") << "there is nothing to change";
    EXPECT_EQ(statusOf(shared).st_uid, uid);
}

TEST_F(HelperTest, GivesNothingToAnAccountOfTheComputerThatMayNotBeTheOneOfTheDirectory) {
    const fs::path shared = folder("shared");
    const struct stat before = statusOf(shared);
    run("/usr/bin/nicl", {".", "-create", "/users/nobody"});
    run("/usr/bin/nicl", {".", "-create", "/groups/mail"});
    const std::string store = root_.storeFile();
    const auto expectRefusals = [&](const std::string& why) {
        for (const char* account : {"nobody:", ":mail"}) {
            const std::string said = run("/usr/sbin/chown", {account, shared.string()});
            EXPECT_NE(said.find(why), std::string::npos) << account << " said: " << said;
        }
    };
    expectRefusals("is missing or not a number");
    fs::rename(store, store + ".away");
    expectRefusals("it does not exist");
    std::ofstream(store) << std::string(4096, 'x');
    expectRefusals("it is damaged");
    EXPECT_EQ(statusOf(shared).st_uid, before.st_uid);
    EXPECT_EQ(statusOf(shared).st_gid, before.st_gid);
}

TEST_F(HelperTest, CopiesOnlyARegularFileOfTheUser) {
    const std::string before = contentsOfFile(target_.string()).valueOr("");
    test_.write("other.conf", "theirs");
    const std::string other = (test_.root() / "other.conf").string();
    fs::create_symlink(other, test_.root() / "link");
    ASSERT_EQ(::mkfifo((test_.root() / "pipe").c_str(), 0600), 0);
    for (const char* name : {"link", "pipe", "missing", "home"}) {
        EXPECT_NE(run("/bin/cp", {(test_.root() / name).string(), "/etc/smb.conf"}), "") << name;
    }
    place_.user = ::getuid() + 1;
    EXPECT_NE(run("/bin/cp", {other, "/etc/smb.conf"}).find("does not belong"), std::string::npos);
    EXPECT_EQ(contentsOfFile(target_.string()).valueOr("?"), before);
    EXPECT_FALSE(fs::exists(target_.string() + ".previous"));
}

TEST_F(HelperTest, KeepsTheFirstTextForeverAndTheOneReplacedLast) {
    std::ofstream(target_) << "original";
    ASSERT_EQ(::chmod(target_.c_str(), 0640), 0);
    for (const char* text : {"first", "second", ""}) {
        test_.write("new.conf", text);
        EXPECT_EQ(run("/bin/cp", {source_, "/etc/smb.conf"}), "");
        EXPECT_EQ(contentsOfFile(target_.string()).valueOr("?"), text);
    }
    EXPECT_EQ(modeOf(target_), 0640U);
    EXPECT_EQ(contentsOfFile(target_.string() + ".before-brindle").valueOr("?"), "original");
    EXPECT_EQ(contentsOfFile(target_.string() + ".previous").valueOr("?"), "second");
    EXPECT_EQ(std::distance(fs::directory_iterator(target_.parent_path()), {}), 3)
        << "something was left over";
}

TEST_F(HelperTest, FollowsALinkAtTheTargetToItsFileEvenToOneThatIsMissing) {
    const fs::path real = folder("elsewhere") / "real.conf";
    fs::remove(target_);
    fs::create_symlink("../../elsewhere/real.conf", target_);
    for (const char* text : {"first", "second"}) {
        test_.write("new.conf", text);
        EXPECT_EQ(run("/bin/cp", {source_, "/etc/smb.conf"}), "");
        EXPECT_TRUE(fs::is_symlink(target_));
        EXPECT_EQ(contentsOfFile(real.string()).valueOr("?"), text);
    }
    EXPECT_EQ(modeOf(real), 0644U);
    EXPECT_EQ(contentsOfFile(real.string() + ".before-brindle").valueOr("?"), "") << "there was no file";
    EXPECT_EQ(contentsOfFile(real.string() + ".previous").valueOr("?"), "first");
    fs::remove_all(real.parent_path());
    EXPECT_NE(run("/bin/cp", {source_, "/etc/smb.conf"}), "") << "there is no folder to write to";
}

/// A program called smbd, started as `smbd -s CONFIGURATION`, that makes the file HUP when it gets SIGHUP.
class FakeServer {
  public:
    FakeServer(const fs::path& folder, const std::string& configuration) : folder_(folder) {
        fs::create_directories(folder);
        fs::copy_file("/bin/bash", folder / "smbd");
        const std::string text =
            "cd '" + folder.string() +
            "'; trap 'touch HUP' HUP; touch ready; while :; do read -t 0.05 <> <(:); done";
        process_ = ::fork();
        if (process_ == 0) {
            ::execl((folder / "smbd").c_str(), "smbd", "-c", text.c_str(), "-s", configuration.c_str(),
                    nullptr);
            ::_exit(127);
        }
        EXPECT_TRUE(appears("ready"));
    }

    ~FakeServer() {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }

    FakeServer(const FakeServer&) = delete;
    FakeServer& operator=(const FakeServer&) = delete;

    [[nodiscard]] std::string id() const { return std::to_string(process_); }

    [[nodiscard]] bool appears(const char* file) const {
        for (int tries = 0; tries < 100 && !fs::exists(folder_ / file); ++tries) {
            ::usleep(50000);
        }
        return fs::exists(folder_ / file);
    }

  private:
    fs::path folder_;
    pid_t process_ = 0;
};

TEST_F(HelperTest, HangsUpTheServersOfItsRootAndNoOthers) {
    const FakeServer own(folder("own"), platform::SambaAccounts(root_.sambaPaths()).configurationFile());
    const FakeServer foreign(folder("foreign"), "/etc/samba/smb.conf");
    EXPECT_EQ(run("/bin/kill", {"-1", own.id()}), "");
    EXPECT_TRUE(own.appears("HUP"));
    EXPECT_NE(run("/bin/kill", {"-1", foreign.id()}).find("not a server of this root"), std::string::npos);
    EXPECT_FALSE(fs::exists(test_.root() / "foreign/HUP"));
}

TEST_F(HelperTest, StartsNothingForARequestThatItRefuses) {
    using Words = std::vector<std::string>;
    const Words root = {"--root", root_.folder()};
    const std::string good("/usr/bin/nicl\0.\0-create\0/users/eve\0", 35);
    const auto framed = [](const std::string& request) {
        return platform::frameHeader(request.size()) + request;
    };
    const std::string whole = framed(good);
    const std::vector<std::tuple<Words, std::string, Words, std::string>> cases = {
        {root, framed(std::string("/bin/sh\0-c\0true\0", 16)), {}, "\x15"},
        {root, framed(good.substr(0, good.size() - 1)), {}, "\x15"}, // its last word has no end
        {root, whole.substr(0, whole.size() - 1), {}, ""},
        {root, framed(good + std::string(1024 * 1024, 'x') + '\0'), {}, ""},
        {root, whole, {"SUDO_UID=1000"}, ""}, // through sudo, a root could be anywhere
        {Words{}, whole, {}, ""},
        // A folder of another user, or one that a link may redirect.
        {Words{"--system", "--root", root_.folder()}, whole, {"SUDO_UID=1000"}, ""},
        {Words{"--system", "--root", "usr/share"}, whole, {"SUDO_UID=1000"}, ""},
    };
    for (const auto& [options, input, environment, answer] : cases) {
        Words command = {helperProgram};
        command.insert(command.end(), options.begin(), options.end());
        const Finished finished = runProgram(command, input, environment);
        EXPECT_EQ(finished.output, answer);
        EXPECT_NE(finished.errors, "") << "it says why";
        EXPECT_NE(finished.status, 1) << "sudo refuses with 1";
        EXPECT_EQ(finished.status == 0, !answer.empty());
    }
    EXPECT_EQ(runProgram({helperProgram, "--root", root_.folder()}, whole).output,
              std::string("\x06\0\0\0\0\0", 6));
}

} // namespace
