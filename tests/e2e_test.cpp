// All of Brindle on a temporary root: the program itself driven by scripts, its helper, the directory's
// tools, and a real smbd on a loopback port with smbclient as the client.

#include "platform/host/EmbeddedRoot.h"
#include "platform/posix/ProcessTable.h"
#include "platform/samba/EmbeddedServer.h"
#include "platform/samba/ServerProcesses.h"
#include "support/Subprocess.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <thread>

#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// A root with a share folder in it, and its SMB server.
class EndToEnd : public testing::Test {
  protected:
    void SetUp() override {
        if (access("/usr/sbin/smbd", X_OK) != 0) {
            GTEST_SKIP() << "no smbd on this machine: install samba, smbclient and libnss-wrapper";
        }
        // A guest must be able to reach the folder.
        fs::permissions(test_.root(), fs::perms(0755));
        fs::create_directories(folder());
        fs::permissions(folder(), fs::perms(0700));
        ASSERT_EQ(root_.makeIfMissing().text(), "");
        ASSERT_EQ(server_.start(port_).text(), "");
    }

    [[nodiscard]] fs::path computer() const { return test_.root() / "computer"; }

    [[nodiscard]] fs::path folder() const { return test_.root() / "Documents"; }

    [[nodiscard]] fs::path configuration() const { return computer() / "etc/smb.conf"; }

    [[nodiscard]] std::vector<std::string> environment() const {
        return {"HOME=" + test_.home().string(), "XDG_CONFIG_HOME=" + (test_.home() / ".config").string(),
                "LC_ALL=C"};
    }

    /// Runs a script to its end and returns its output.
    std::string script(const std::string& commands) {
        const Finished finished =
            runProgram({BRINDLE_PROGRAMS "/brindle", "--root", computer(), "--script", "-"},
                       "answer Donation Cancel\nstart\n" + commands, environment());
        EXPECT_EQ(finished.status, 0) << finished.output << finished.errors;
        return finished.output;
    }

    Finished tool(std::vector<std::string> words) {
        words[0] = BRINDLE_PROGRAMS "/" + words[0];
        words.insert(words.begin() + 1, {"--root", computer()});
        return runProgram(words, {}, environment());
    }

    [[nodiscard]] std::vector<std::string> client(const std::string& share,
                                                  const std::vector<std::string>& words) const {
        std::vector<std::string> command{"smbclient", "-p", std::to_string(port_), "//127.0.0.1/" + share};
        command.insert(command.end(), words.begin(), words.end());
        return command;
    }

    /// Returns what smbclient prints for `commands` as `user` ("NAME%PASSWORD"), or as a guest if it is
    /// empty.
    std::string smb(const std::string& share, const std::string& user, const std::string& commands) {
        const std::vector<std::string> who =
            user.empty() ? std::vector<std::string>{"-N"} : std::vector<std::string>{"-U", user};
        std::vector<std::string> words = who;
        words.insert(words.end(), {"-c", commands});
        const Finished finished = runProgram(client(share, words));
        return finished.output + finished.errors;
    }

    [[nodiscard]] std::string createDocs(bool guestAccess) const {
        return "choose " + folder().string() + "\nsend selectDirectory:\ntype shareName Docs\n" +
               "select ownerPrivs 0\nselect groupPrivs 0\nselect everyonePrivs 0\nselect sharingAFS 1\n" +
               "select sharingSMB 1\ncheck guestAccessButton " + (guestAccess ? "on" : "off") +
               "\npress createNewShare\n";
    }

    TestHost test_;
    platform::EmbeddedRoot root_{computer().string()};
    platform::EmbeddedServer server_{root_.sambaPaths()};
    int port_ = freePort();
};

/// True when the open session gets `answer` about the share within twenty seconds: the server handles a
/// signal only when it has nothing else to do.
bool comesTo(Conversation& session, const std::string& answer) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!contains(session.ask("tcon Docs", "tcon "), answer)) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return true;
}

/// Returns the parameters of each section as testparm lists them.
std::map<std::string, std::string> sections(const std::string& listing) {
    std::map<std::string, std::string> answer;
    std::istringstream lines(listing);
    std::string line;
    std::string name;
    while (std::getline(lines, line)) {
        if (line.starts_with("[")) {
            name = line;
        } else if (!line.empty()) {
            answer[name] += line + "\n";
        }
    }
    return answer;
}

} // namespace

TEST_F(EndToEnd, AShareMadeInTheEditorReachesAnOpenConnectionAndIsGoneAfterItsDeletion) {
    const pid_t process = server_.processId();
    // A new connection reads the file anyway: only an open one shows that the server was notified.
    std::vector<std::string> command = client("IPC$", {"-N"});
    command.insert(command.begin(), {"stdbuf", "-oL"}); // smbclient buffers its output to a pipe
    Conversation session(command);
    EXPECT_TRUE(contains(session.ask("tcon Docs", "tcon "), "NT_STATUS_BAD_NETWORK_NAME"));

    const std::string printed = script(createDocs(true));
    EXPECT_TRUE(contains(printed, "run /bin/kill -1 ")) << printed;
    EXPECT_TRUE(comesTo(session, "successful"));
    EXPECT_EQ(fs::status(folder()).permissions(), fs::perms(0777));

    const fs::path letter = test_.root() / "letter";
    std::ofstream(letter) << "Dear Ada";
    EXPECT_FALSE(contains(
        smb("Docs", "", "put " + letter.string() + " letter; get letter " + letter.string() + ".back"),
        "NT_STATUS"));
    std::ifstream back(letter.string() + ".back");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(back), {}), "Dear Ada");

    // Each connection handles the signal by itself, and one that asks for the share before that keeps using
    // it, like the first session. So each bystander asks only once, later than the one before.
    std::vector<std::unique_ptr<Conversation>> bystanders;
    for (int number = 0; number < 6; ++number) {
        bystanders.push_back(std::make_unique<Conversation>(command));
        EXPECT_TRUE(contains(bystanders.back()->ask("tcon IPC$", "tcon "), "successful"));
    }
    script("rows normalTableView 0\npress deleteButton\n");
    auto pause = std::chrono::milliseconds(500);
    const bool isGone = std::ranges::any_of(bystanders, [&pause](const auto& bystander) {
        std::this_thread::sleep_for(pause);
        pause *= 2;
        return contains(bystander->ask("tcon Docs", "tcon "), "NT_STATUS_BAD_NETWORK_NAME");
    });
    EXPECT_TRUE(isGone);
    EXPECT_TRUE(contains(smb("Docs", "", "ls"), "NT_STATUS_BAD_NETWORK_NAME"));
    EXPECT_EQ(tool({"nireport", ".", "/config/Brindle", "name"}).output, "");
    EXPECT_EQ(server_.processId(), process);
    EXPECT_EQ(kill(process, 0), 0);
}

TEST_F(EndToEnd, OnlyAUserMadeInTheUsersTabGetsInWithGuestAccessOff) {
    EXPECT_EQ(tool({"nicl", ".", "-create", "/groups/crew"}).output, "");
    EXPECT_EQ(tool({"nicl", ".", "-create", "/groups/crew", "gid", "7200"}).output, "");
    script(createDocs(false) + "answer \"Confirm Add New File Sharing Only User\" Yes\n"
                               "type fullName \"Alice A\"\ntype shortName alice\ntype uid 7201\n"
                               "select groupPopUp crew\npress addNewUserButton\n"
                               "type passwordSecureText1 Wonderland1\ntype passwordSecureText2 Wonderland1\n"
                               "send setPassword:\n");
    const fs::path letter = test_.root() / "letter";
    std::ofstream(letter) << "Dear Ada";
    const std::string put = "put " + letter.string() + " letter";
    EXPECT_FALSE(contains(smb("Docs", "alice%Wonderland1", put), "NT_STATUS"));
    EXPECT_TRUE(contains(smb("Docs", "alice%wrong", put), "NT_STATUS_LOGON_FAILURE"));
    EXPECT_TRUE(contains(smb("Docs", "", put), "NT_STATUS_ACCESS_DENIED"));

    const std::string rows = script("show userTableView\n");
    const std::size_t alice = rows.find(" User=\"alice\"");
    ASSERT_NE(alice, std::string::npos) << rows;
    const std::string row = rows.substr(rows.rfind('\n', alice) + 1, alice - rows.rfind('\n', alice) - 1);
    script("answer \"Confirm Delete Selected User\" Yes\nrows userTableView " + row +
           "\npress deleteUserButton\n");
    // An account that no longer exists becomes the guest, who may not use this share.
    EXPECT_TRUE(contains(smb("Docs", "alice%Wonderland1", put), "NT_STATUS_ACCESS_DENIED"));
}

TEST_F(EndToEnd, ASharedPublicFolderCanBeReadButNotWritten) {
    const fs::path home = test_.root() / "home";
    fs::create_directories(home / "Public");
    std::ofstream(home / "Public" / "letter") << "Dear Ada";
    for (const fs::path& each : {home, home / "Public"}) {
        ASSERT_EQ(chown(each.c_str(), geteuid() == 0 ? 7201 : geteuid(), getegid()), 0);
    }
    const std::string uid = geteuid() == 0 ? "7201" : std::to_string(geteuid());
    EXPECT_EQ(tool({"nicl", ".", "-create", "/users/ann"}).output, "");
    for (const auto& [property, value] : {std::pair<std::string, std::string>("uid", uid),
                                          {"gid", "7201"},
                                          {"home", home.string()},
                                          {"sharedDir", "Public"}}) {
        EXPECT_EQ(tool({"nicl", ".", "-create", "/users/ann", property, value}).output, "");
    }
    EXPECT_EQ(tool({"dscl", ".", "-passwd", "/Users/ann", "Wonderland1"}).output, "");
    const std::string read =
        smb("ann's Public", "ann%Wonderland1", "ls; put " + configuration().string() + " new");
    EXPECT_TRUE(contains(read, "letter")) << read;
    EXPECT_TRUE(contains(read, "NT_STATUS_ACCESS_DENIED")) << read;
    EXPECT_EQ(tool({"nicl", ".", "-create", "/users/ann", "sharedDir", ""}).output, "");
    for (int tries = 0; contains(smb("ann's Public", "ann%Wonderland1", "ls"), "letter"); ++tries) {
        ASSERT_LT(tries, 20) << "it is still there"; // the server handles a signal when it has time
        std::this_thread::sleep_for(std::chrono::milliseconds(250));
    }
}

TEST_F(EndToEnd, SambaKnowsEveryParameterWrittenAndFindsTheOtherSectionsUnchanged) {
    std::ofstream(configuration(), std::ios::app)
        << "\n# kept by hand\n[Music]\n   path = /srv/music\n"
           "   comment = All of it\n\tveto files = /*.tmp/\n\n[printers]\npath=/var/tmp\n"
           "printable = yes\n";
    const std::vector<std::string> testparm{"testparm", "-s", configuration().string()};
    const auto before = sections(runProgram(testparm).output);
    script(createDocs(true));
    const Finished after = runProgram(testparm);
    EXPECT_FALSE(contains(after.errors, "nknown parameter")) << after.errors;
    auto listed = sections(after.output);
    EXPECT_TRUE(contains(listed["[Docs]"], "guest ok = Yes"));
    listed.erase("[Docs]");
    EXPECT_EQ(listed, before);
    EXPECT_TRUE(fs::exists(configuration().string() + ".before-brindle"));
}

/// A Brindle that serves the root.
class Serving : public EndToEnd {
  protected:
    void SetUp() override {
        EndToEnd::SetUp();
        server_.stop();
    }

    /// Returns the root's Samba processes, including those in their own sessions.
    [[nodiscard]] std::vector<pid_t> daemons() const {
        auto ids = platform::processIds();
        std::erase_if(ids, [&](pid_t id) {
            return !platform::isDaemonWith(id, root_.sambaPaths().folder + "/smbd.conf");
        });
        return ids;
    }

    [[nodiscard]] bool allEnd() const {
        for (int tries = 0; tries < 500 && !daemons().empty(); ++tries) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return daemons().empty();
    }

    /// Starts Brindle and lists its shares, which makes smbd start its daemons.
    [[nodiscard]] pid_t serve() const {
        const pid_t brindle = fork();
        if (brindle == 0) {
            // A test that runs in the background may inherit that some are ignored.
            for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
                std::signal(signal, SIG_DFL);
            }
            platform::EmbeddedServer server(root_.sambaPaths());
            _exit(server.start(port_).isOk() ? ::pause() : 1);
        }
        for (int tries = 0; tries < 100; ++tries) {
            if (runProgram({"smbclient", "-p", std::to_string(port_), "-N", "-L", "127.0.0.1"}).status == 0) {
                return brindle;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        ADD_FAILURE() << "nothing is served";
        return brindle;
    }

    static void end(pid_t process, int signal) {
        kill(process, signal);
        waitpid(process, nullptr, 0);
    }
};

TEST_F(Serving, HoweverBrindleEndsTheServerEndsWithAllItsDaemons) {
    EXPECT_TRUE(allEnd());
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGKILL}) {
        const pid_t brindle = serve();
        EXPECT_GT(daemons().size(), 1U);
        end(brindle, signal);
        EXPECT_TRUE(allEnd()) << signal;
    }
}

TEST_F(Serving, TheNextStartEndsWhatAKilledKeeperLeft) {
    const pid_t brindle = serve();
    const auto before = daemons();
    for (const pid_t process : platform::processIds()) {
        if (platform::statusNumberOf(process, "PPid") == std::to_string(brindle)) {
            kill(process, SIGKILL);
        }
    }
    end(brindle, SIGKILL);
    EXPECT_FALSE(daemons().empty());
    ASSERT_EQ(server_.start(port_).text(), "");
    for (const pid_t process : daemons()) {
        EXPECT_EQ(std::ranges::count(before, process), 0) << process;
    }
}
