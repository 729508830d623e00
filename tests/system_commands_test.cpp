// The commands on a computer of their own: what the administrator allows, what is refused, and the computer's
// own server.

#include "support/InstalledBrindle.h"

#include <chrono>
#include <thread>

namespace {

class SystemCommands : public InstalledBrindle {
  protected:
    static Finished command(const std::vector<std::string>& words) {
        std::vector<std::string> all{
            "/usr/sbin/runuser",     "-u",      "chief", "--", "env", "HOME=/home/chief", "LC_ALL=C",
            prefix + "/bin/brindle", "--system"};
        all.insert(all.end(), words.begin(), words.end());
        all.emplace_back("--json");
        return runProgram(all);
    }

    /// Repeats the command for up to ten seconds until its output contains `part`, and returns that.
    static std::string comesTo(const std::vector<std::string>& words, const std::string& part) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        std::string output;
        do {
            output = command(words).output;
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        } while (!contains(output, part) && std::chrono::steady_clock::now() < end);
        return output;
    }
};

} // namespace

TEST_F(SystemCommands, EndWithFourIfTheAdministratorRefusesAndChangeNothing) {
    allow("ALL"); // with a password, and nobody is there to give it
    const std::string before = run({"/usr/bin/cat", smbConf, "/etc/passwd"});
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"shares", "add", "Docs", folder_, "--yes"},
          {"users", "add", "zoe", "--group", "chief", "--no-password", "--yes"},
          {"servers", "start", "--at-boot", "--yes"},
          {"sessions"}}) {
        const Finished finished = command(words);
        EXPECT_EQ(finished.status, 4) << words[0] << finished.output << finished.errors;
        EXPECT_TRUE(contains(finished.output, "\"status\": 4")) << finished.output;
    }
    EXPECT_EQ(run({"/usr/bin/cat", smbConf, "/etc/passwd"}), before);
    EXPECT_EQ(command({"shares", "list"}).status, 0);
    EXPECT_TRUE(contains(command({"servers", "start", "--at-boot", "--dry-run"}).output,
                         "would run /usr/sbin/service smbd enable"));
}

TEST_F(SystemCommands, RefuseAccountsThatTheComputerDoesNotTakeBeforeTheFirstRun) {
    for (const auto& [words, part] : std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{"users", "add", "max m", "--group", "chief", "--no-password", "--yes"}, "with a blank"},
             {{"users", "add", "x", "--uid", "33", "--group", "chief", "--no-password", "--yes"},
              "has this number"},
             {{"groups", "add", "two words", "--yes"}, "with a blank"},
             {{"groups", "add", "x", "--gid", "33", "--yes"}, "has this number"}}) {
        const Finished finished = command(words);
        EXPECT_EQ(finished.status, 1) << finished.output;
        EXPECT_TRUE(contains(finished.output, "cannot be used: ") && contains(finished.output, part))
            << finished.output;
    }
    EXPECT_TRUE(contains(command({"users", "remove", "chief"}).output, "is connected or logged in (brindle"));
    run({"/usr/sbin/useradd", "-m", "-s", "/bin/sh", "lena"});
    EXPECT_TRUE(contains(command({"users", "remove", "lena"}).output, "the home folder /home/lena stays"));
}

TEST_F(SystemCommands, ShowWhoIsConnectedAndDisconnectThroughTheHelper) {
    EXPECT_EQ(command({"shares", "add", "Docs", folder_, "--guests", "--everyone-may", "rw", "--yes"}).status,
              0);
    Conversation client({"stdbuf", "-oL", "smbclient", "-N", "//127.0.0.1/Docs"});
    EXPECT_TRUE(contains(client.ask("volume", "olume"), "olume"));
    const std::string said = comesTo({"sessions"}, "\"Docs\"");
    EXPECT_TRUE(contains(said, "\"Docs\"") && contains(said, "\"address\": \"127.0.0.1\"")) << said;
    const Finished ended = command({"sessions", "disconnect", "--share", "Docs", "--yes"});
    EXPECT_TRUE(contains(ended.output, "\"changed\": true")) << ended.output << ended.errors;
    EXPECT_FALSE(contains(comesTo({"sessions"}, "\"shares\": []"), "\"Docs\""));
}

TEST_F(SystemCommands, FindFaultsOfTheComputer) {
    EXPECT_FALSE(contains(command({"doctor"}).output, "server-")) << command({"doctor"}).output;
    run({"/bin/sh", "-c", "printf '[Gone]\npath = /home/gone\ncolour = red\n' >>" + smbConf});
    run({"/bin/sh", "-c", "chmod 666 " + smbConf + "; kill $(cat /run/samba/smbd.pid); sleep 1"});
    const Finished finished = command({"doctor"});
    EXPECT_EQ(finished.status, 5);
    EXPECT_TRUE(contains(command({"servers", "restart", "smb"}).output, "\"changed\": false"));
    for (const char* code : {"folder-gone", "smb-conf", "server-stopped", "writable-by-others"}) {
        EXPECT_TRUE(contains(finished.output, std::string("\"code\": \"") + code)) << code << finished.output;
    }
    run({"/bin/rm", smbConf});
    EXPECT_TRUE(contains(command({"doctor"}).output, smbConf + " does not exist"));
}
