// Sessions of a real smbd, and disconnecting them; and both forms of smbstatus's output.

#include "platform/host/EmbeddedRoot.h"
#include "platform/samba/EmbeddedServer.h"
#include "platform/samba/Sessions.h"
#include "support/Subprocess.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <sstream>
#include <thread>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

class Sessions : public testing::Test {
  protected:
    void SetUp() override {
        if (access("/usr/sbin/smbd", X_OK) != 0 || geteuid() != 0) {
            GTEST_SKIP() << "only root may use smbstatus, and it needs samba, smbclient and libnss-wrapper";
        }
        fs::permissions(test_.root(), fs::perms(0755));
        for (const char* name : {"Docs", "Music"}) {
            fs::create_directories(test_.root() / name);
            std::ofstream(test_.root() / name / "letter") << "Dear Ada";
            fs::permissions(test_.root() / name / "letter", fs::perms(0666));
            command("shares add " + std::string(name) + " " + (test_.root() / name).string() +
                    " --guests --everyone-may rw --yes");
        }
        ASSERT_EQ(server_.start(port_).text(), "");
    }

    json command(const std::string& line) const {
        std::vector<std::string> words{BRINDLE_PROGRAMS "/brindle", "--root",
                                       (test_.root() / "computer").string(), "--json"};
        std::istringstream stream(line);
        words.insert(words.begin() + 3, std::istream_iterator<std::string>(stream), {});
        const Finished finished = runProgram(words, {}, {"HOME=" + test_.home().string(), "LC_ALL=C"});
        EXPECT_EQ(finished.status, 0) << line << finished.output << finished.errors;
        return json::parse(finished.output, nullptr, false);
    }

    std::unique_ptr<Conversation> connect(const std::string& share) const {
        auto client = std::make_unique<Conversation>(std::vector<std::string>{
            "stdbuf", "-oL", "smbclient", "-N", "-p", std::to_string(port_), "//127.0.0.1/" + share});
        EXPECT_NE(client->ask("open letter", "open file").find("open file"), std::string::npos);
        return client;
    }

    /// Waits up to ten seconds for that many shares in use, and returns them.
    std::string sharesOnceThereAre(std::size_t count) const {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (true) {
            std::set<std::string> names;
            const json said = command("sessions");
            for (const json& session : said["sessions"]) {
                for (const json& share : session["shares"]) {
                    names.insert(share["name"]);
                }
            }
            if (names.size() == count || std::chrono::steady_clock::now() > end) {
                return json(names).dump();
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
    }

    TestHost test_;
    platform::EmbeddedServer server_{
        platform::EmbeddedRoot((test_.root() / "computer").string()).sambaPaths()};
    int port_ = freePort();
};

} // namespace

TEST_F(Sessions, AreListedWithTheirFilesAndDisconnectedByShareAndByComputer) {
    EXPECT_EQ(command("sessions")["sessions"], json::array());
    EXPECT_EQ(command("sessions disconnect --share Docs --yes")["changed"], false);
    const auto docs = connect("Docs");
    const auto music = connect("Music");

    EXPECT_EQ(sharesOnceThereAre(2), R"(["Docs","Music"])");
    const json said = command("sessions");
    for (const json& session : said["sessions"]) {
        EXPECT_EQ(session["user"], "nobody");
        EXPECT_EQ(session["address"], "127.0.0.1");
        const std::string share = session["shares"][0]["name"];
        EXPECT_EQ(session["files"].size(), 1U) << session;
        EXPECT_EQ(session["files"][0]["path"], (test_.root() / share / "letter").string());
        EXPECT_EQ(session["since"].get<std::string>().substr(0, 2), "20");
    }
    EXPECT_TRUE(command("sessions disconnect --share Docs --dry-run").contains("plan"));
    EXPECT_EQ(sharesOnceThereAre(2), R"(["Docs","Music"])");
    const json closed = command("sessions disconnect --share Docs --yes");
    EXPECT_EQ(closed["changed"], true);
    EXPECT_EQ(closed["runs"], 1);
    EXPECT_EQ(sharesOnceThereAre(1), R"(["Music"])");
    EXPECT_EQ(command("sessions disconnect --computer 127.0.0.2 --yes")["changed"], false);
    EXPECT_EQ(command("sessions disconnect --computer 127.0.0.1 --yes")["changed"], true);
    EXPECT_EQ(sharesOnceThereAre(0), "[]");
    EXPECT_EQ(command("history")["history"].size(), 2U) << "only the two new shares";
}

TEST(SessionListing, IsReadInBothOfItsForms) {
    const std::string text = R"(
Samba version 4.9.5
PID     Username     Group        Machine                                   Protocol Version  Encryption           Signing
----------------------------------------------------------------------------------------------------------------------------------------
301     ann          crew         tower (ipv4:192.168.1.7:57274)            SMB3_11           -                    -
302     bob          crew         192.168.1.8 (ipv6:fe80::1:4000)           SMB2_10           -                    -

Service      pid     Machine       Connected at                     Encryption   Signing
---------------------------------------------------------------------------------------------
My Docs      301     tower         Wed Nov 25 14:32:53 2026 UTC     -            -
IPC$         301     tower         Wed Nov 25 14:32:51 2026 UTC     -            -
Music        302     192.168.1.8   Wed Nov 25 14:32:54 2026 UTC     -            -

Locked files:
Pid          User(ID)   DenyMode   Access      R/W        Oplock           SharePath   Name   Time
--------------------------------------------------------------------------------------------------
301          1001       DENY_NONE  0x3         RDWR       NONE             /srv/my docs   a {letter}.txt   Wed Nov 25 14:33:53 2026
302          1002       DENY_NONE  0x1         RDONLY     NONE             /srv/music   song   Wed Nov 25 14:33:54 2026
)";

    const auto read = platform::sessionsIn(text);
    ASSERT_TRUE(read.isOk());
    const std::vector<platform::Session>& sessions = *read;
    ASSERT_EQ(sessions.size(), 2U);
    EXPECT_EQ(sessions[0].user + " " + sessions[0].computer + " " + sessions[0].address,
              "ann tower 192.168.1.7");
    ASSERT_EQ(sessions[0].shares.size(), 1U);
    EXPECT_EQ(sessions[0].shares[0].name, "My Docs");
    EXPECT_NE(sessions[0].since(), 0);
    ASSERT_EQ(sessions[0].files.size(), 1U);
    EXPECT_EQ(sessions[0].files[0].path, "/srv/my docs/a {letter}.txt");
    EXPECT_TRUE(sessions[0].files[0].isWritten);
    EXPECT_EQ(sessions[0].files[0].since - sessions[0].since(), 60);
    EXPECT_EQ(sessions[1].address, "fe80::1");
    EXPECT_FALSE(sessions[1].files.at(0).isWritten);

    for (const char* nothing :
         {"", "[]", "\n{\"sessions\": {}, \"tcons\": {}}", "{\"sessions\": {\"1\": 5}, \"tcons\": 2}"}) {
        EXPECT_TRUE(platform::sessionsIn(nothing).valueOr({{}}).empty()) << nothing;
    }
    EXPECT_FALSE(platform::sessionsIn("{\"sessions\": ").isOk()) << "it must not be read as an empty list";
    EXPECT_TRUE(platform::sessionsIn("{\"smb_conf\": \"\xFF\"}").isOk()) << "a byte that is not UTF-8";
}
