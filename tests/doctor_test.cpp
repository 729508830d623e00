// The doctor: each fault is found, named with its place, and repaired by the command that the doctor prints.

#include "platform/samba/SettingsComplaints.h"
#include "support/Subprocess.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

class Doctor : public testing::Test {
  protected:
    void SetUp() override {
        fs::create_directories(test_.root() / "Docs");
        fs::permissions(test_.root(), fs::perms(0755));
        shell("brindle shares list");
    }

    [[nodiscard]] fs::path root() const { return test_.root() / "computer"; }

    /// Runs a command. "brindle" in it is the built program with this root, "FOLDER" the test's folder.
    Finished shell(std::string command, const std::string& input = {}) const {
        for (std::size_t at = 0; (at = command.find("FOLDER", at)) != std::string::npos;) {
            command.replace(at, 6, test_.root().string());
        }
        return runProgram({"/bin/sh", "-c", command}, input,
                          {"HOME=" + test_.home().string(), "LC_ALL=C", "BRINDLE_ROOT=" + root().string(),
                           "PATH=" BRINDLE_PROGRAMS ":/usr/sbin:/usr/bin:/bin"});
    }

    /// Returns the findings with that code.
    json findings(const std::string& code) const {
        const json said = json::parse(shell("brindle doctor --json").output, nullptr, false);
        json found = json::array();
        for (const json& each : said["findings"]) {
            if (each["code"] == code) {
                found.push_back(each);
            }
        }
        return found;
    }

    void addSettings(const std::string& text) const {
        std::ofstream(root() / "etc/smb.conf", std::ios::app) << text;
    }

    TestHost test_;
};

/// Returns the remedy with --yes, to answer every question, and with the test's folder.
std::string answered(std::string remedy) {
    for (std::size_t at = 0; (at = remedy.find("/FOLDER", at)) != std::string::npos;) {
        remedy.erase(at, 1);
    }
    std::string all;
    for (std::size_t begin = 0; begin < remedy.size();) {
        const std::size_t end = std::min(remedy.find(" && ", begin), remedy.size());
        const std::string command = remedy.substr(begin, end - begin);
        all += (all.empty() ? "" : " && ") + command + (command.starts_with("brindle") ? " --yes" : "");
        begin = end + 4;
    }
    return all;
}

} // namespace

TEST_F(Doctor, NamesEachFaultAndTheCommandThatRepairsIt) {
    const struct {
        const char* code;
        const char* damage; ///< a command
        const char* settings;
        const char* where;
        const char* about;
    } cases[] = {
        {"folder-gone", "brindle shares add Gone FOLDER/Docs --yes && rmdir FOLDER/Docs", "",
         "/config/Brindle/Gone", "Gone"},
        {"folder-gone", "true", "[Deep]\npath = \"FOLDER/no/such\"\n", "[Deep]", "Deep"},
        {"relative-folder", "true", "[Near]\n  Path = no/such\n", "[Near]", "Near"},
        {"relative-folder",
         "mkdir FOLDER/Far && brindle shares add Far FOLDER/Far --yes && nicl --root $BRINDLE_ROOT . -create "
         "/config/Brindle/Far directory_path far && sed -i 's,^.*/Far$,path = far,' "
         "$BRINDLE_ROOT/etc/smb.conf",
         "", "/config/Brindle/Far", "Far"},
        {"unreachable", "mkdir FOLDER/50%Um", "[Turn]\npath = FOLDER/50%Um\n", "[Turn]", "Turn"},
        {"no-path", "true", "[Bare]\nguest ok = yes\n", "[Bare]", "Bare"},
        {"half-made-share", "nicl --root $BRINDLE_ROOT . -create /config/Brindle/Half", "",
         "/config/Brindle/Half", "Half"},
        {"half-made-user", "nicl --root $BRINDLE_ROOT . -create /users/half", "", "/users/half", "half"},
        {"half-made-group", "nicl --root $BRINDLE_ROOT . -create /groups/half", "", "/groups/half", ""},
        {"names-differ",
         "mkdir FOLDER/One && brindle shares add One FOLDER/One --yes && sed -i 's/\\[One\\]/[Other]/' "
         "$BRINDLE_ROOT/etc/smb.conf",
         "", "[Other]", "One"},
        {"folders-differ",
         "mkdir FOLDER/Two && brindle shares add Two FOLDER/Two --yes && sed -i 's,^.*/Two$,path = "
         "FOLDER/Docs,' $BRINDLE_ROOT/etc/smb.conf",
         "", "[Two]", "Two"},
        {"published-nowhere", "brindle shares set One --no-smb --no-afp --yes", "", "/config/Brindle/One",
         "One"},
        {"name-case",
         "brindle shares add Case FOLDER/Docs --yes && sed -i 's/\\[Case\\]/[CASE]/' "
         "$BRINDLE_ROOT/etc/smb.conf",
         "", "[CASE]", "Case"},
        {"name-case", "true", "[Same]\npath = FOLDER/Docs\n[SAME]\npath = FOLDER/Docs\n", "[SAME]", "SAME"},
        {"name-case", "true", "[HOMES]\nread only = yes\n", "[HOMES]", ""},
        {"hidden-section", "true", "[Scans] ; new\npath = FOLDER/Docs\n", "/etc/smb.conf:", "Scans"},
        {"no-password", "brindle users add ann --uid 1500 --group root --no-password --yes", "", "ann",
         "ann"},
        {"public-folder-gone", "brindle public on ann --yes", "", "/Public", "ann"},
        {"readable-by-others", "chmod 755 $BRINDLE_ROOT/samba/private", "", "/samba/private", ""},
        {"writable-by-others", "chmod 666 $BRINDLE_ROOT/etc/smb.conf", "", "/etc/smb.conf", ""},
        {"writable-by-others", "chmod 646 $BRINDLE_ROOT/directory.db", "", "/directory.db", ""},
    };

    for (const auto& [code, damage, settings, where, about] : cases) {
        EXPECT_EQ(findings(code), json::array()) << damage;
        std::string text = settings;
        for (std::size_t at = 0; (at = text.find("FOLDER", at)) != std::string::npos;) {
            text.replace(at, 6, test_.root().string());
        }
        addSettings(text);
        const Finished damaged = shell(damage);
        EXPECT_EQ(damaged.status, 0) << damage << damaged.output << damaged.errors;
        const json found = findings(code);
        ASSERT_EQ(found.size(), 1U) << damage << found;
        EXPECT_NE(found[0]["where"].get<std::string>().find(where), std::string::npos) << found;
        const json& concerned = found[0][found[0]["share"].is_null() ? "user" : "share"];
        EXPECT_EQ(concerned, *about == '\0' ? json() : json(about)) << found;
        const std::string remedy = answered(found[0]["remedy"]);
        const bool setsPassword = std::string_view(code) == "no-password";
        const Finished mended =
            setsPassword ? shell(remedy + " --password-stdin", "Wonderland1\n") : shell(remedy);
        EXPECT_EQ(mended.status, 0) << remedy << mended.output << mended.errors;
        EXPECT_EQ(findings(code), json::array()) << remedy;
    }
}

TEST_F(Doctor, NamesOneCommandForAllUsersWithTheSameFault) {
    for (const std::string name : {"ann", "o\\'hara"}) {
        EXPECT_EQ(shell("nicl . -create /users/" + name + " && nicl . -create /users/" + name +
                        " shell /bin/sh && nicl . -create /users/" + name +
                        " gid 20 && nicl . -create /users/" + name + " uid 1500")
                      .status,
                  0);
    }
    const json found = findings("users-without-password");
    ASSERT_EQ(found.size(), 1U);
    std::string remedy = found[0]["remedy"];
    remedy.replace(remedy.find("users password"), 14, "users show");
    const Finished all = shell(remedy);
    EXPECT_EQ(all.status, 0) << remedy << all.errors;
    EXPECT_NE(all.output.find("ann"), std::string::npos);
    EXPECT_NE(all.output.find("o'hara"), std::string::npos);
}

TEST_F(Doctor, EndsWithFiveIfThereIsAProblemAndChangesNothing) {
    EXPECT_EQ(shell("brindle doctor").status, 0) << shell("brindle doctor").output;
    const std::string listing = "find $BRINDLE_ROOT -printf '%p %T@ %m\\n' | sort";
    addSettings("[Docs]\npath = " + (test_.root() / "Nowhere").string() + "\n");
    const std::string before = shell(listing).output;
    EXPECT_EQ(shell("brindle doctor").status, 5);
    EXPECT_EQ(shell(listing).output, before);
    fs::permissions(root() / "directory.db", fs::perms(0600));
    std::ofstream(root() / "directory.db") << "not a store, but some other file that is longer than a header";
    EXPECT_EQ(findings("directory-unreadable").size(), 1U);
}

TEST(SettingsComplaints, NameTheLine) {
    if (access("/usr/bin/testparm", X_OK) != 0) {
        GTEST_SKIP() << "no testparm on this machine: install samba-common-bin";
    }

    const struct {
        const char* text;
        std::vector<std::size_t> lines;
    } cases[] = {
        {"[global]\nworkgroup = HOME\n[Docs]\npath = /tmp\n", {}},
        {"[global]\n# colour = red\n; colour = red\ncolour = red\n", {4}},
        {"[global]\nguest ok = perhaps\n\n[Docs]\npath = /tmp\nread only = maybe\n  Flavour= x\n", {2, 6, 7}},
        {"[Docs]\npath = /tmp\ncomment = a \\\n  b\ncreate mask = 9\n", {5}},
        {"[global]\nmap to guest = Sometimes\ncomment = x\ncomment = y\nbogus = 1\n[Docs]\npath = /\nbogus = "
         "1\n",
         {2, 5, 8}},
        {"[global]\ninclude = /no/such/file\nbogus = 1\n", {3}},
        {"[Docs]\npath = /tmp\n[]\ncomment = x\n[More]\npath = /tmp\nbogus = 1\n", {3, 7}},
        {"[Docs]\npath = /tmp\n\n[More\npath = /tmp\n", {4}},
        {"[Docs]\npath = /tmp\nworkgroup = HOME\n", {3}},
    };

    for (const auto& [text, lines] : cases) {
        const auto complaints = platform::settingsComplaints(text);
        ASSERT_TRUE(complaints.isOk()) << complaints.status().text();
        std::vector<std::size_t> found;
        for (const auto& each : *complaints) {
            if (each.line != 0) { // the others are about this machine's folders
                found.push_back(each.line);
            }
        }
        EXPECT_EQ(found, lines) << text;
    }
}
