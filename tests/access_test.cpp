// Check Access compared with the truth: what smbclient can do on a real smbd.

#include "access/AccessCheck.h"
#include "access/ServerAccounts.h"
#include "model/SMBConf.h"
#include "platform/host/EmbeddedHost.h"
#include "platform/host/EmbeddedRoot.h"
#include "platform/samba/EmbeddedServer.h"
#include "support/Subprocess.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using accesscheck::Answer;
using accesscheck::Permissions;

constexpr uid_t ann = 7301;  // a member of the group crew
constexpr gid_t crew = 7200; // bob is listed as a member
constexpr gid_t others = 7299;

/// A share with its settings, and the mode and owner of its folder.
struct Case {
    const char* name;
    const char* settings;
    unsigned mode;
    uid_t owner;
    gid_t group;
    const char* acl = "";
};

constexpr const char* open = "read only = no\nguest ok = yes\n";

const Case cases[] = {
    {"everyone", open, 0777, 0, 0},
    {"owner", open, 0700, ann, others},
    {"group", open, 0770, 0, crew},
    {"groupreads", open, 0750, 0, crew},
    {"groupless", open, 0707, 0, crew},
    {"ownerless", open, 0077, ann, others},
    {"dropbox", open, 0733, 0, 0},
    {"passing", open, 0711, 0, 0},
    {"nosearch", open, 0766, 0, 0},
    {"sticky", open, 01777, 0, 0},
    {"readonly", "guest ok = yes\n", 0777, 0, 0},
    {"synonyms", "WriteAble = Yes\npublic = true\n", 0777, 0, 0},
    {"guestless", "read only = no\n", 0777, 0, 0},
    {"guestonly", "read only = no\nguest ok = yes\nguest only = yes\n", 0770, 0, crew},
    {"valid", "read only = no\nguest ok = yes\nvalid users = ann, \"bob\"\n", 0777, 0, 0},
    {"validgroup", "read only = no\nvalid users = @crew\n", 0777, 0, 0},
    {"validplain", "read only = no\nvalid users = crew\n", 0777, 0, 0},
    {"validunix", "read only = no\nvalid users = +crew\n", 0777, 0, 0},
    {"invalid", "read only = no\nguest ok = yes\ninvalid users = eve nobody\n", 0777, 0, 0},
    {"readlist", "read only = no\nguest ok = yes\nread list = ann @nogroup\n", 0777, 0, 0},
    {"writelist", "guest ok = yes\nwrite list = @crew\n", 0777, 0, 0},
    {"bothlists", "read list = ann\nwrite list = ann bob\n", 0777, 0, 0},
    {"forceuser", "read only = no\nguest ok = yes\nforce user = ann\n", 0700, ann, others},
    {"forcevalid", "read only = no\nvalid users = bob\nforce user = ann\n", 0700, ann, others},
    {"forceread", "read only = no\nread list = bob\nforce user = ann\n", 0777, 0, 0},
    {"forcewrite", "write list = bob\nforce user = ann\n", 0777, 0, 0},
    {"forcegroup", "read only = no\nguest ok = yes\nforce group = crew\n", 0770, 0, crew},
    {"forcemember", "read only = no\nguest ok = yes\nforce group = +crew\n", 0770, 0, crew},
    {"admin", "read only = no\nguest ok = yes\nadmin users = bob\n", 0700, 0, 0},
    {"adminread", "guest ok = yes\nadmin users = bob\n", 0700, 0, 0},
    {"acluser", open, 0700, 0, 0, "u:eve:rwx"},
    {"aclmask", open, 0700, 0, 0, "u:eve:rwx,m::rx"},
    {"aclgroup", open, 0700, 0, 0, "g:crew:rwx"},
    {"acldenies", open, 0777, 0, 0, "g:crew:---"},
    {"off", "read only = no\nguest ok = yes\navailable = no\n", 0777, 0, 0},
};

void put(const fs::path& file, const std::string& text) {
    std::ofstream(file) << text;
}

std::string get(const fs::path& file) {
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace

namespace accesscheck {

void PrintTo(const Permissions& may, std::ostream* stream) {
    *stream << (may.connect ? "connect " : "") << (may.list ? "list " : "") << (may.read ? "read " : "")
            << (may.write ? "write " : "") << (may.create ? "create " : "") << (may.remove ? "remove" : "");
}

} // namespace accesscheck

namespace {

/// A root with its server, the users ann, bob and eve, and a few who cannot log on.
class CheckAccess : public testing::Test {
  protected:
    void SetUp() override {
        if (access("/usr/sbin/smbd", X_OK) != 0) {
            GTEST_SKIP() << "no smbd on this machine: install samba, smbclient and libnss-wrapper";
        }
        if (geteuid() != 0) {
            GTEST_SKIP() << "only root's smbd can become each user";
        }
        fs::permissions(test_.root(), fs::perms(0755));
        ASSERT_EQ(root_.makeIfMissing().text(), "");
        nicl({"-create", "/groups/crew"});
        nicl({"-create", "/groups/crew", "gid", std::to_string(crew)});
        nicl({"-create", "/groups/crew", "users", "bob"});
        int uid = ann;
        for (const char* name : {"ann", "bob", "eve", "sue", "dan"}) {
            const std::string record = std::string("/users/") + name;
            nicl({"-create", record});
            nicl({"-create", record, "uid", std::to_string(uid++)});
            nicl({"-create", record, "gid", std::to_string(std::string(name) == "ann" ? crew : others)});
            if (std::string(name) != "sue") {
                tool({"dscl", ".", "-passwd", std::string("/Users/") + name, "Wonderland1"});
            }
        }
        const platform::SambaAccounts accounts(root_.sambaPaths());
        std::vector<std::string> disable{
            "pdbedit", "-s", root_.sambaPaths().folder + "/accounts.conf", "-c", "[D]", "-u", "dan"};
        for (const std::string& option : accounts.privateOptions()) {
            disable.push_back(option);
        }
        EXPECT_EQ(runProgram(disable, {}, accounts.environment()).status, 0);
        std::string conf = "[global]\n";
        for (const Case& each : cases) {
            conf += std::string("[") + each.name + "]\npath = " + folder(each.name).string() + "\n" +
                    each.settings;
        }
        conf += std::string("[missing]\npath = ") + folder("nowhere").string() + "\n" + open;
        conf += std::string("[file]\npath = ") + (test_.root() / "letter").string() + "\n" + open;
        conf +=
            std::string("[locked]\npath = ") + (test_.root() / "private" / "inside").string() + "\n" + open;
        conf +=
            std::string("[Deep Link]\npath = ") + (test_.root() / "link" / "inside").string() + "\n" + open;
        put(test_.root() / "computer/etc/smb.conf", conf);
        put(test_.root() / "letter", "Dear Ada");
        ASSERT_EQ(server_.start(port_).text(), "");
    }

    [[nodiscard]] fs::path folder(const std::string& name) const { return test_.root() / name; }

    void tool(std::vector<std::string> words) {
        words[0] = BRINDLE_PROGRAMS "/" + words[0];
        words.insert(words.begin() + 1, {"--root", (test_.root() / "computer").string()});
        const Finished finished = runProgram(words);
        EXPECT_EQ(finished.output + finished.errors, "");
    }

    void nicl(std::vector<std::string> words) {
        words.insert(words.begin(), {"nicl", "."});
        tool(std::move(words));
    }

    /// Returns what `user`, or the guest, can really do.
    [[nodiscard]] Permissions truth(const std::string& share, const char* user,
                                    const fs::path& folder) const {
        const fs::path got = test_.root() / "got";
        fs::remove(got);
        const std::string letter = (test_.root() / "letter").string();
        std::vector<std::string> command{"smbclient", "-p", std::to_string(port_), "//127.0.0.1/" + share};
        const std::vector<std::string> who =
            user == nullptr ? std::vector<std::string>{"-N"}
                            : std::vector<std::string>{"-U", std::string(user) + "%Wonderland1"};
        command.insert(command.end(), who.begin(), who.end());
        command.insert(command.end(), {"-c", "ls; get probe " + got.string() + "; put " + letter +
                                                 " probe; put " + letter + " new; rmdir victim"});
        const Finished finished = runProgram(command);
        const std::string said = finished.output + finished.errors;
        Permissions may;
        may.connect = said.find("tree connect failed") == std::string::npos &&
                      said.find("session setup failed") == std::string::npos;
        may.list = said.find("blocks available") != std::string::npos;
        may.read = fs::exists(got) && get(got) == "probe";
        may.write = get(folder / "probe") == "Dear Ada";
        may.create = fs::exists(folder / "new");
        may.remove = fs::exists(folder) && !fs::exists(folder / "victim");
        said_ = said;
        return may;
    }

    void prepare(const fs::path& folder, const Case& each) const {
        fs::remove_all(folder);
        fs::create_directories(folder);
        put(folder / "probe", "probe");
        fs::permissions(folder / "probe", fs::perms(0666));
        fs::create_directory(folder / "victim"); // smbclient lists the folder before it deletes a file
        ASSERT_EQ(chown(folder.c_str(), each.owner, each.group), 0);
        ASSERT_EQ(chmod(folder.c_str(), each.mode), 0);
        if (*each.acl != '\0') {
            std::string acl = each.acl;
            for (const auto& [name, number] : {std::pair("eve", ann + 2), std::pair("crew", crew)}) {
                const auto at = acl.find(name);
                if (at != std::string::npos) {
                    acl.replace(at, std::string(name).size(), std::to_string(number));
                }
            }
            ASSERT_EQ(runProgram({"setfacl", "-m", acl, folder.string()}).errors, "");
        }
    }

    void compare(const std::string& share, const fs::path& folder, const Case& each) {
        for (const char* user : {"ann", "bob", "eve", static_cast<const char*>(nullptr)}) {
            prepare(folder, each);
            const Answer answer = ask(share, user);
            EXPECT_EQ(answer.may, truth(share, user, folder))
                << share << " for " << (user == nullptr ? "the guest" : user) << ": "
                << (answer.reason ? answer.reason->text : "no reason") << '\n'
                << said_;
            const Permissions everything{true, true, true, true, true, true};
            EXPECT_EQ(answer.reason.has_value(), answer.may != everything) << share;
        }
    }

    [[nodiscard]] Answer ask(const std::string& share, const char* user) const {
        platform::EmbeddedHostOptions options;
        options.root = (test_.root() / "computer").string();
        options.keepsUserDefaults = false;
        const platform::Host host(*platform::makeEmbeddedServices(options));
        const SMBConf conf;
        accesscheck::ServerAccounts accounts{platform::SambaAccounts(root_.sambaPaths())};
        const auto check = [&] {
            return accesscheck::AccessCheck(conf, accounts, {"smb.conf", true})
                .check(share, user == nullptr ? std::nullopt : std::optional<std::string>(user));
        };
        Answer answer = check();
        for (const char* many : {"a", "b", "c", "d"}) {
            static_cast<void>(accounts.account(many)); // all users are read at once from here on
        }
        EXPECT_EQ(check().may, answer.may) << share;
        return answer;
    }

    TestHost test_;
    platform::EmbeddedRoot root_{(test_.root() / "computer").string()};
    platform::EmbeddedServer server_{root_.sambaPaths()};
    int port_ = freePort();
    mutable std::string said_;
};

} // namespace

TEST_F(CheckAccess, EveryAnswerMatchesTheServer) {
    for (const Case& each : cases) {
        compare(each.name, folder(each.name), each);
    }
    const Case everyone{"", "", 0777, 0, 0};
    compare("LOCKED", test_.root() / "private" / "inside", everyone);
    fs::permissions(test_.root() / "private", fs::perms(0710));
    ASSERT_EQ(chown((test_.root() / "private").c_str(), 0, crew), 0);
    fs::create_directory_symlink("private", test_.root() / "link");
    compare("deep link", test_.root() / "private" / "inside", everyone);
    for (const char* share : {"missing", "file", "none of that name"}) {
        EXPECT_EQ(ask(share, "ann").may, truth(share, "ann", folder("nowhere"))) << said_;
    }
    for (const char* user : {"sue", "dan", "zoe"}) {
        prepare(folder("everyone"), everyone);
        EXPECT_EQ(ask("everyone", user).may, truth("everyone", user, folder("everyone"))) << said_;
    }
}

TEST_F(CheckAccess, ARemedyReachesTheNamedFolderAndRunsNothingElse) {
    const fs::path odd = folder("$(touch pwned) '\"a`touch pwned`");
    put(test_.root() / "computer/etc/smb.conf", "[odd]\npath = " + odd.string() + "\n" + open);
    const auto carryOutRemedy = [&](const char* code) {
        const Answer answer = ask("odd", "eve");
        ASSERT_TRUE(answer.reason && answer.reason->code == code) << code;
        const Finished finished =
            runProgram({"sh", "-c", "cd '" + test_.root().string() + "' && " + answer.reason->remedy});
        EXPECT_EQ(finished.status, 0) << answer.reason->remedy << finished.errors;
    };
    carryOutRemedy("folder-missing");
    prepare(odd, {"", "", 0700, 0, 0, "u:eve:---"});
    carryOutRemedy("no-read");
    fs::permissions(odd, fs::perms(01777), fs::perm_options::add);
    carryOutRemedy("sticky");
    EXPECT_FALSE(ask("odd", "eve").reason);
    EXPECT_FALSE(fs::exists(test_.root() / "pwned"));
}

TEST_F(CheckAccess, ADirectoryThatCannotBeReadIsNotAnAnswer) {
    put(root_.storeFile(), std::string(8192, 'x'));
    const Answer answer = ask("everyone", "ann");
    ASSERT_TRUE(answer.reason);
    EXPECT_EQ(answer.reason->code, "cannot-tell") << answer.reason->text;
    EXPECT_EQ(answer.may, Permissions());
    EXPECT_EQ(ask("none of that name", "ann").reason->code, "not-published");
}
