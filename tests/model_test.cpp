#include "model/NormalShare.h"
#include "model/SMBConf.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {

/// Returns "KIND NAME {KEY=VALUE;...} TEXT", to compare entries in one line.
std::string shown(const SMBShare& entry) {
    std::string text = std::to_string(entry.Type()) + " " + entry.ShareName().str() + " {";
    for (const SMBPair& pair : entry.Props()) {
        text += pair.Name.str() + "=" + pair.Value.str() + ";";
    }
    return text + "} " + std::string(entry.Text());
}

class SMBConfTest : public testing::Test {
  protected:
    SMBConf parse(const std::string& bytes) {
        host.write("etc/smb.conf", bytes);
        return SMBConf();
    }

    std::vector<std::string> entriesOf(const std::string& bytes) {
        const SMBConf conf = parse(bytes);
        std::vector<std::string> texts;
        for (const auto& entry : conf.Entries()) {
            texts.push_back(shown(*entry));
        }
        return texts;
    }

    /// Makes the administrator's copy succeed.
    void copy() {
        host.onRun = [this](const RecordedRun& run) {
            host.write("etc/smb.conf", host.read(fs::relative(run.arguments.at(0), host.root()).string()));
            return TestHost::RunAnswer{};
        };
    }

    TestHost host;
};

} // namespace

TEST_F(SMBConfTest, GroupsLinesIntoEntries) {
    const std::vector<std::pair<std::string, std::vector<std::string>>> files{
        {"", {"1  {} "}},
        {" \t\r\n\n", {"1  {} "}},
        {"# a\r\n; b\n", {"1  {} # a\n; b\n"}},
        {"[a]\rx=1\ry=2\n[b]\r\n\rz=3\r", {"2 a {x=1;y=2;} ", "2 b {z=3;} "}},
        {"stray\n# a\nstray = 1\n# b", {"1  {} # a\n# b\n"}},
        {"\t[homes]\n", {"2 homes {} "}},
        {"[ data ]\n", {"2 data  {} "}},
        {"[a]\n[b ] \nx = 1\n", {"2 a {x=1;} "}},
        {"[]\n;[]\n;[c\n", {"2 [] {} ", "0 ;[] {} ", "0 c {} "}},
        {"[a]\n# inside\nx=1\n;[b]\n;y=2\n[c]", {"2 a {x=1;} # inside\n", "0 b {y=2;} ", "2 c {} "}},
        {"[a]\n# b\n# c\n  # d\nx=1\n# e", {"2 a {x=1;} # b\n# c\n# d\n# e\n"}},
        {"#[b]\n#path = /x\n# shared by hand\n; note = read me\n;\n;=x\n;k =\n",
         {"0 b {path=/x;note=read me;} # shared by hand\n"}},
        {";[b]\nworkgroup = X\n# c\n", {"0 b {} ", "1  {} # c\n"}},
        {"; [x]\n[a]\nx=1\nx=2\n", {"1  {} ; [x]\n", "2 a {x=1;x=2;} "}},
    };
    for (const auto& [bytes, entries] : files) {
        EXPECT_EQ(entriesOf(bytes), entries) << bytes;
    }
}

TEST_F(SMBConfTest, KeepsKeysAndValuesToTheByte) {
    const std::vector<std::pair<std::string, std::string>> lines{
        {"  max connections   =  10  ", "max connections=10;"},
        {"a = b = c", "a=b = c;"},
        {"key=value ; not a comment", "key=value ; not a comment;"},
        {"key\t= value \t", "key\t=value \t;"},
        {"\vkey = \f value", "key=value;"},
        {"caf\xe9 = \xff\"q\"", "caf\xe9=\xff\"q\";"},
        {"path =", ""},
        {"path", ""},
        {"=value", ""},
        {"k = one#$%BLAKtwo", "k=one;"},
        {"k = #$%BLAK", ""},
    };
    for (const auto& [line, pairs] : lines) {
        EXPECT_EQ(entriesOf("[s]\n" + line + "\n"), std::vector<std::string>{"2 s {" + pairs + "} "}) << line;
    }
}

TEST_F(SMBConfTest, TheLastExactNameIsTheReference) {
    const SMBConf conf =
        parse("[global]\na=1\n;[homes]\n;b=1\n[Global]\n[HOMES]\n[global]\na=2\n[homes]\nb=2\n;[global]\n");
    ASSERT_NE(conf.Global(), nullptr);
    ASSERT_NE(conf.Homes(), nullptr);
    EXPECT_EQ(shown(*conf.Global()), "2 global {a=2;} ");
    EXPECT_EQ(shown(*conf.Homes()), "2 homes {b=2;} ");
    const SMBConf commented = parse("[homes]\n;[homes]\n;[global]\n");
    ASSERT_NE(commented.Homes(), nullptr);
    EXPECT_EQ(commented.Homes()->Type(), SMBCommentGroup);
    EXPECT_EQ(commented.Global(), nullptr);
}

TEST_F(SMBConfTest, NamesTheLinesThatAWriteWouldSpoil) {
    const SMBConf conf = parse("stray\r\n[a]\r\nhosts = a, \\\r\n  b\r\nkept = 1\r\n# note \\\nempty "
                               "=\n\n[b] \nx = 1\n;[c]\n;only\nafter = 1\n");
    EXPECT_EQ(conf.lossNotices(), (std::vector<SMBLossNotice>{{1, SMBLoss::OutsideSection},
                                                              {3, SMBLoss::Continuation},
                                                              {4, SMBLoss::NoValue},
                                                              {7, SMBLoss::NoValue},
                                                              {9, SMBLoss::BrokenHeader},
                                                              {13, SMBLoss::OutsideSection}}));
    EXPECT_TRUE(parse("# c\n[a]\nx = 1\n;[b]\n;y\n").lossNotices().empty());
    const SMBConf cut = parse("[a]b]\nx = 1\n[]\ny = 1\n;[c] \n;[d\n#[e] f\n");
    EXPECT_EQ(cut.lossNotices(),
              (std::vector<SMBLossNotice>{{1, SMBLoss::BrokenHeader}, {7, SMBLoss::BrokenHeader}}));
    const SMBConf sleeping = parse(";[homes]\n;a = 1 \\\n;b = 2\n;[Homes]\n;a = 1 \\\n;b = 2\n");
    EXPECT_EQ(sleeping.lossNotices(), (std::vector<SMBLossNotice>{{2, SMBLoss::Continuation}}))
        << "only the section that the home folders' check box can enable";
}

TEST_F(SMBConfTest, FindsTheSectionsThatOnlyTheServerSees) {
    using Hidden = std::vector<SMBHiddenSection>;
    EXPECT_EQ(
        parse("[top] \nx = 1\n[a]\n [b] = c \n[d]\n[e\\\nf] \n;[g]\n;x = [h] \n[i] j\n").hiddenSections(),
        (Hidden{{1, "[top]", ""}, {4, "[b] = c", "a"}, {6, "[e\\", "d"}, {10, "[i] j", ""}}));
    // No header for the server either: joined to the line above, a comment, or without a bracket.
    EXPECT_EQ(parse("[a]\nx = 1 \\\n[b] c\n# [d] e\n[f\n[g]h]\n").hiddenSections(), Hidden{});
}

TEST_F(SMBConfTest, AByteOrderMarkSpoilsTheFirstLineAsItDoesForTheServer) {
    const SMBConf conf = parse("\xef\xbb\xbf[global]\na = 1\n[b]\n");
    EXPECT_EQ(conf.Global(), nullptr);
    EXPECT_EQ(conf.writtenText(), "[b]\n\n\n");
    EXPECT_EQ(conf.lossNotices(),
              (std::vector<SMBLossNotice>{{1, SMBLoss::ByteOrderMark}, {2, SMBLoss::OutsideSection}}));
    EXPECT_TRUE(parse("\xef\xbb\xbf# c\n[a]\n\xef\xbb\xbf# c = 1\n").lossNotices().size() == 1);
}

TEST_F(SMBConfTest, WritesTheFileInItsOwnLayout) {
    const std::string written =
        ";Example configuration\n\n\n"
        "[global]\nworkgroup = WORKGROUP\nserver string = File Server\n; no WINS server yet\n\n\n"
        ";[homes]\n;comment = Home Directories\n;browseable = no\n\n\n"
        "[Public]\npath = /Users/Shared\n\n\n";
    const SMBConf conf =
        parse(";Example configuration\n[global]\n   workgroup = WORKGROUP\n   ; no WINS server yet\n"
              "   wins server =\n   server string = File Server\n\n;[homes]\n"
              ";   comment = Home Directories\n;   browseable = no\n[Public]\npath=/Users/Shared\n");
    EXPECT_EQ(conf.writtenText(), written);
    EXPECT_EQ(parse(written).writtenText(), written);
    EXPECT_EQ(parse("").writtenText(), "\n\n");
    for (const char* header : {"[]", "[]x]", "[ ]", ";[]", "#[] x", ";["}) {
        const std::string unnamed = std::string(header) + "\n\n\n";
        const SMBConf kept = parse(unnamed);
        EXPECT_EQ(kept.writtenText(), unnamed);
        EXPECT_TRUE(kept.lossNotices().empty()) << header;
    }
    SMBConf odd = parse("[a]\nx=1\n# c\n[b]");
    odd.Entries().front()->setType(7);
    EXPECT_EQ(odd.writtenText(), "[b]\n\n\n");
}

TEST_F(SMBConfTest, ReportsWhereAWriteFailed) {
    SMBConf conf = parse("[a]\nx = 1\n");
    const fs::path temporary = host.home() / "smb_test.conf";
    copy();
    EXPECT_EQ(conf.writeSMBConfFile(), 0);
    EXPECT_EQ(host.read("etc/smb.conf"), "[a]\nx = 1\n\n\n");
    EXPECT_FALSE(fs::exists(temporary));
    EXPECT_EQ(host.runTexts(), std::vector<std::string>{"/bin/cp " + temporary.string() + " /etc/smb.conf"});

    host.onRun = [](const RecordedRun&) { return TestHost::RunAnswer{"cp: no\n", 0}; };
    EXPECT_EQ(conf.writeSMBConfFile(), 1);
    EXPECT_TRUE(fs::exists(temporary));

    host.onRun = [&](const RecordedRun&) {
        fs::remove(temporary);
        return TestHost::RunAnswer{};
    };
    EXPECT_EQ(conf.writeSMBConfFile(), 3);

    host.runs.clear();
    fs::create_directories(temporary / "in the way");
    EXPECT_EQ(conf.writeSMBConfFile(), 2);
    EXPECT_TRUE(host.runs.empty());
}

TEST_F(SMBConfTest, AFileThatCannotBeReadIsNeverReplaced) {
    const fs::path file = host.root() / "etc/smb.conf";
    host.write("etc/smb.conf", "");
    const std::vector<std::pair<std::function<void()>, std::string>> cases{
        {[&] { fs::create_directory(file); }, "Is a directory"},
        {[&] { ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0); }, "it is not a regular file"},
        {[&] { fs::create_symlink("/dev/zero", file); }, "it is not a regular file"},
        {[&] {
             host.write("etc/smb.conf", "[a]\n");
             fs::resize_file(file, std::uintmax_t{1} << 42);
         },
         "File too large"}};
    for (const auto& [make, reason] : cases) {
        fs::remove(file);
        make();
        host.log.clear();
        SMBConf conf;
        ASSERT_EQ(host.log.size(), 1U);
        EXPECT_NE(host.log.front().find("/etc/smb.conf"), std::string::npos);
        EXPECT_EQ(conf.unreadableReason(), reason);
        EXPECT_EQ(conf.modifySMBShare("Docs", "/d", 1, 0, 0), 2);
        EXPECT_TRUE(host.runs.empty());
    }
}

TEST_F(SMBConfTest, AMissingFileIsMadeByTheFirstShare) {
    SMBConf conf;
    EXPECT_TRUE(host.log.empty());
    EXPECT_EQ(conf.unreadableReason(), "");
    copy();
    EXPECT_EQ(conf.modifySMBShare("Docs", "/d", 1, 0, 0), 0);
    EXPECT_TRUE(host.read("etc/smb.conf").starts_with("\n\n[Docs]\npath = /d\n"));
}

TEST_F(SMBConfTest, MapsAShareOntoItsSection) {
    const std::string before = "[Docs]\npath = /d\n# mine\n;[Old]\n;path = /o\n";
    const std::string written = "[Docs]\npath = /d\n# mine\n\n\n;[Old]\n;path = /o\n\n\n";

    // The share's name, whether it is shared, inherits and admits guests; the file afterwards, empty when
    // nothing is written.
    const std::vector<std::tuple<std::string, int, int, int, std::string>> cases{
        {"Docs", 1, 0, 0, written},
        {"Docs", 1, 0, 1, "[Docs]\npath = /d\nguest ok = Yes\n# mine\n\n\n;[Old]\n;path = /o\n\n\n"},
        {"Docs", 2, 1, 2,
         "[Docs]\npath = /d\ninherit permissions = Yes\n# mine\n\n\n;[Old]\n;path = /o\n\n\n"},
        {"Docs", 0, 0, 0, ";[Old]\n;path = /o\n\n\n"},
        {"Old", 0, 0, 0, ""},
        {"docs", 0, 0, 0, ""},
        {"docs", 2, 1, 1, ""},
        {"Old", 1, 0, 1,
         written +
             "[Old]\npath = /new\nread only = No\ninherit permissions = No\nguest ok = Yes\n;Created by "
             "Brindle\n\n"},
    };
    copy();
    for (const auto& [name, sharing, inherit, guest, after] : cases) {
        SMBConf conf = parse(before);
        EXPECT_EQ(conf.modifySMBShare(name, "/new", sharing, inherit, guest), 0);
        EXPECT_EQ(host.read("etc/smb.conf"), after.empty() ? before : after) << name << sharing;
    }
    SMBConf flags = parse("[Docs]\nguest ok = yes\nguest ok = maybe\n");
    EXPECT_EQ(flags.modifySMBShare("Docs", "/new", 1, 0, 0), 0);
    EXPECT_EQ(host.read("etc/smb.conf"), "[Docs]\nguest ok = No\nguest ok = maybe\n\n\n");
}

TEST_F(SMBConfTest, AFailedWriteKeepsTheChangeAndTheWarningForTheNextWrite) {
    SMBConf conf = parse("[homes]\nlost\n[Docs]\n");
    host.onRun = [](const RecordedRun&) { return TestHost::RunAnswer{"cp: no\n", 0}; };
    EXPECT_EQ(conf.modifySMBShare("Docs", "", 0, 0, 0), 1);
    EXPECT_EQ(conf.lossNotices().size(), 1U);
    copy();
    EXPECT_EQ(conf.modifySMBShare("homes", "", 0, 0, 0), 0);
    EXPECT_EQ(host.read("etc/smb.conf"), "");
    EXPECT_EQ(conf.Homes(), nullptr) << "the entry is gone, so the reference must be null";
    EXPECT_TRUE(conf.lossNotices().empty()) << "there is nothing left to lose";
}

TEST_F(SMBConfTest, LaterWritesKeepWhatSomebodyElseWroteInTheMeantime) {
    platform::Services services = host.host().services();
    services.keepsLayout = true;
    const platform::Host keeping(std::move(services));
    copy();
    SMBConf conf = parse("# by hand\n[global]\n\tworkgroup = OFFICE\n");
    const auto add = [](SMBConf& model, const std::string& name) {
        return model.modifySMBShare(name, "/" + name, 1, 0, 0);
    };
    EXPECT_EQ(add(conf, "a"), 0);
    const std::string theirs = "\n[theirs]\npath = /theirs\n";
    host.write("etc/smb.conf", host.read("etc/smb.conf") + theirs);
    EXPECT_EQ(add(conf, "b"), 0);
    EXPECT_EQ(add(*conf.copy(), "c"), 0);
    EXPECT_EQ(conf.modifySMBShare("b", "/b", 0, 0, 0), 0);
    EXPECT_EQ(conf.modifySMBShare("a", "/a", 0, 0, 0), 0);
    const std::string text = host.read("etc/smb.conf");
    EXPECT_TRUE(text.starts_with("# by hand\n[global]\n\tworkgroup = OFFICE\n" + theirs + "\n[c]\n")) << text;
    EXPECT_EQ(text.find("[a]") & text.find("[b]"), std::string::npos) << text;

    fs::remove(host.root() / "etc/smb.conf");
    EXPECT_EQ(add(conf, "d"), 0);
    EXPECT_EQ(host.read("etc/smb.conf"), conf.writtenText()) << "there is nothing to keep";
    fs::remove(host.root() / "etc/smb.conf");
    fs::create_directory(host.root() / "etc/smb.conf");
    EXPECT_EQ(add(conf, "e"), 2);
    EXPECT_FALSE(conf.textToWrite().isOk());
}

TEST_F(SMBConfTest, DescribesItselfForTheLog) {
    const SMBConf conf = parse("[a]\nx = 1\n# c\n");
    EXPECT_EQ(conf.description(), "Path: /etc/smb.conf\n(\nShare Name: a   Type: SMBGroup\n"
                                  "(\n    {Name = x; Value = 1;}\n)\nText: # c\n\n)\n");
    SMBShare entry;
    std::string kinds;
    for (const std::int32_t kind : {0, 1, 2, 3, -1}) {
        entry.setType(kind);
        kinds += entry.smbTypeToText() + " ";
    }
    EXPECT_EQ(kinds, "SMBCommentGroup SMBComment SMBGroup Error Error ");
}

TEST(SMBTextTest, ACopyOutlivesTheFile) {
    std::string file = "value";
    const SMBPair read{SMBText::borrowed(file), "own"};
    const SMBPair copy = read;
    file = "XXXXX";
    EXPECT_EQ(copy.Value, "own");
    EXPECT_EQ(copy.Name, "value");
}

TEST(NormalShareTest, ShowsTheFoldersPrivilegesAsText) {
    const TestHost host;
    const fs::path folder = host.root() / "folder";
    fs::create_directory(folder);
    fs::create_directory_symlink(folder, host.root() / "link");
    const std::vector<std::tuple<int, std::string, std::string, std::string>> modes{
        {0750, "r/w", "r", ""},
        {0333, "w", "w", "w"},
        {0111, "", "", ""},
        {04644, "r/w", "r", "r"},
        {01777, "r/w", "r/w", "r/w"}};
    for (const auto& [mode, owner, group, everyone] : modes) {
        fs::permissions(folder, static_cast<fs::perms>(mode));
        NormalShare share;
        share.setPathandPermissions((host.root() / "link").string());
        EXPECT_EQ(std::tie(share.Owner(), share.Group(), share.Everyone()), std::tie(owner, group, everyone))
            << mode;
    }
    NormalShare share;
    EXPECT_EQ(*share.valueForKey("DirectoryPath"), "Directory Not Set");
    EXPECT_EQ(*share.valueForKey("AFS") + *share.valueForKey("SMB") + *share.valueForKey("SMBGuestAccess"),
              "--No");
    share.setPathandPermissions("/does/not/exist");
    EXPECT_EQ(share.DirectoryPath() + share.Owner() + share.Group() + share.Everyone(), "/does/not/exist");
    EXPECT_EQ(share.valueForKey("owner"), nullptr);
    EXPECT_EQ(NormalShare::permissionsToString(4) + NormalShare::permissionsToString(-1), "");
}

TEST(Descriptions, NameEachFieldAndParameter) {
    const TestHost host;
    NormalShare share;
    share.setShareName("name");
    share.setAFPShared("shared");
    share.setAFPName("afp");
    share.setDirectoryPath("/path");
    share.setOwner("owner");
    share.setGroup("group");
    share.setEveryone("everyone");
    share.setAFS("afs");
    share.setSMB("smb");
    share.setInherit("inherit");
    share.setInheritOwner("inherit owner");
    share.setSMBGuestAccess("guests");
    EXPECT_EQ(share.description(), "Share Name: name\nAFP Shared: shared   AFP Name: afp\n"
                                   "Directory Path: /path\nOwner: owner   Group: group   Everyone: everyone\n"
                                   "AFS: afs   SMB: smb\n"
                                   "Inherit: inherit   Inherit Owner: inherit owner   "
                                   "SMB Guest Access: guests\n");
    EXPECT_EQ(
        SMBConf::ofText("[a]\nx = 1\n# t\n")->description(),
        "Path: \n(\nShare Name: a   Type: SMBGroup\n(\n    {Name = x; Value = 1;}\n)\nText: # t\n\n)\n");
    SMBShare other;
    other.setType(7);
    EXPECT_EQ(other.smbTypeToText(), "Error");
}
