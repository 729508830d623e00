// What the application needs of its foundation: texts, files, settings, translations, notifications,
// addresses.

#include "platform/foundation/Fetch.h"
#include "platform/foundation/Gestalt.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/NSFileManager.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/foundation/StringTable.h"
#include "support/LoopbackServer.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {

TEST(Texts, AnIntegerIsReadUpToTheFirstOtherCharacter) {
    const std::vector<std::string> texts = {"42",
                                            " \t\n-7x9",
                                            "+5",
                                            "007",
                                            "",
                                            "x1",
                                            "- 1",
                                            "--1",
                                            "12.9",
                                            "1,000",
                                            "2147483648",
                                            "99999999999999999999999",
                                            "-2",
                                            "-2147483648",
                                            "-99999999999999999999",
                                            "4294967294 "};
    std::vector<std::int32_t> values;
    std::ranges::transform(texts, std::back_inserter(values), intValue);
    EXPECT_EQ(values, (std::vector<std::int32_t>{42, -7, 5, 7, 0, 0, 0, 0, 12, 1, INT32_MAX, INT32_MAX, -2,
                                                 INT32_MIN, INT32_MIN, INT32_MAX}));
}

TEST(Texts, SplittingKeepsEmptyPieces) {
    using Pieces = std::vector<std::string>;
    EXPECT_EQ(componentsSeparatedByString("a\t\tb\t", "\t"), (Pieces{"a", "", "b", ""}));
    EXPECT_EQ(componentsSeparatedByString("", ","), Pieces{""});
    EXPECT_EQ(componentsSeparatedByString("a, b", ", "), (Pieces{"a", "b"}));
}

TEST(Texts, LengthsAndOffsetsCountUTF16Units) {
    const std::string text = "aé\xF0\x9F\x98\x80\xFFz"; // 1 + 1 + 2 units, one stray byte, 1
    EXPECT_EQ(utf16Length(text), 6U);
    EXPECT_EQ(offsetOfUTF16(text, 2), 3U);
    EXPECT_EQ(offsetOfUTF16(text, 4), 7U);
    EXPECT_EQ(offsetOfUTF16(text, 5), 8U);
    EXPECT_EQ(offsetOfUTF16(text, 60), text.size());
}

TEST(Texts, OnlyWellFormedUTF8IsValid) {
    EXPECT_TRUE(isValidUTF8("aé\xE2\x82\xAC\xF0\x9F\x98\x80"));
    for (const char* bad :
         {"\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82", "\x80", "\xE0\x80\x80"}) {
        EXPECT_FALSE(isValidUTF8(bad));
    }
}

TEST(Texts, AFormatTakesItsArgumentsInOrder) {
    EXPECT_EQ(stringWithFormat("%@ has %d of %s, mode %o, 100%%", "a%@b", 3, std::string("x"), 0755),
              "a%@b has 3 of x, mode 755, 100%");
    EXPECT_EQ(stringWithFormat("%@ %@ %q %", std::optional<std::string>()), "(null) %@ %q %");
    EXPECT_EQ(stringWithFormat("%3$o %@ %1$@ %@ %4$@ %2$", "a", "b", 8), "10 a a b %4$@ %2$");
}

TEST(Files, AttributesFollowLinksAndNameTheOwner) {
    TestHost host;
    const fs::path folder = host.root() / "folder";
    fs::create_directory(folder);
    ASSERT_EQ(::chmod(folder.c_str(), 02750), 0);
    fs::create_directory_symlink(folder, host.root() / "link");
    const auto attributes = fileAttributesAtPath(host.root() / "link");
    ASSERT_TRUE(attributes);
    EXPECT_EQ(attributes->posixPermissions, 02750);
    EXPECT_EQ(attributes->ownerAccountName(), host.host().accountNames().userName(::getuid()));
    EXPECT_FALSE(fileAttributesAtPath(host.root() / "missing"));
}

TEST(Files, SystemFilesAreReadWrittenAndRemovedBelowTheRoot) {
    TestHost host;
    EXPECT_EQ(contentsOfFile("/etc/smb.conf").status().systemError(), ENOENT);
    host.write("etc/smb.conf", std::string("\xFF\0x", 3));
    EXPECT_EQ(contentsOfFile("/etc/smb.conf").valueOr("?"), std::string("\xFF\0x", 3));
    EXPECT_TRUE(writeToFileAtomically("/etc/smb.conf", "new", 0600).isOk());
    EXPECT_EQ(host.read("etc/smb.conf"), "new");
    EXPECT_TRUE(removeFileAtPath("/etc/smb.conf").isOk());
    EXPECT_FALSE(fs::exists(host.root() / "etc/smb.conf"));
    EXPECT_EQ(stringByExpandingTildeInPath("~/a"), host.home().string() + "/a");
    EXPECT_EQ(stringByExpandingTildeInPath("~bob/a"), "~bob/a");
}

TEST(Files, PathsAreSplitAsTheShellDoes) {
    const std::vector<std::vector<std::string>> cases = {
        {"/a/b", "/a", "b"}, {"/a/b/", "/a", "b"}, {"/a", "/", "a"}, {"/", "/", "/"},
        {"a", ".", "a"},     {"a//b", "a", "b"},   {"", "", ""},     {"//a", "/", "a"}};
    for (const auto& row : cases) {
        EXPECT_EQ(stringByDeletingLastPathComponent(row.at(0)), row.at(1)) << row.at(0);
        EXPECT_EQ(lastPathComponent(row.at(0)), row.at(2)) << row.at(0);
    }
}

TEST(UserDefaults, ValuesOutliveTheHostAndKeepOtherKeys) {
    TestHost host;
    const std::string file = "home/.config/brindle/defaults.plist";
    EXPECT_EQ(NSUserDefaults::standardUserDefaults().integerForKey("count"), std::nullopt);
    NSUserDefaults::standardUserDefaults().setInteger(1, "other");
    NSUserDefaults fresh((host.root() / file).string());
    fresh.setInteger(7, "count");
    NSUserDefaults::standardUserDefaults().setInteger(2, "other"); // it has read the file before
    const NSUserDefaults again((host.root() / file).string());
    EXPECT_EQ(again.integerForKey("count"), 7);
    EXPECT_EQ(again.integerForKey("other"), 2);
    EXPECT_TRUE(host.log.empty());
}

TEST(UserDefaults, AFileThatIsNotAPropertyListIsLeftAlone) {
    TestHost host;
    host.write("home/broken.plist", "notes");
    NSUserDefaults defaults((host.home() / "broken.plist").string());
    defaults.setInteger(3, "count");
    EXPECT_EQ(defaults.integerForKey("count"), 3);
    EXPECT_EQ(host.read("home/broken.plist"), "notes");
    ASSERT_EQ(host.log.size(), 1U);
    EXPECT_NE(host.log.front().find("broken.plist"), std::string::npos);
}

TEST(UserDefaults, WithoutAFileNothingIsWritten) {
    const TestHost host;
    NSUserDefaults defaults("");
    defaults.setInteger(3, "count");
    EXPECT_EQ(defaults.integerForKey("count"), 3);
    EXPECT_TRUE(host.log.empty());
}

TEST(StringTables, EntriesCommentsAndEscapesAreRead) {
    const auto read =
        platform::readStringTable("\xEF\xBB\xBF/* a \" b */ \"k\\\"1\" /*x*/ = // why\n\"a\\n\\t\\\\é\";\n"
                                  "\"two\nlines\"=\"\\U20AC \\Ud83d\\Ude00\"; \"k\\\"1\" = \"later\";");
    ASSERT_TRUE(read.isOk());
    const platform::StringTable& table = *read;
    EXPECT_EQ(table.size(), 2U);
    EXPECT_EQ(table.at("k\"1"), "a\n\t\\é");
    EXPECT_EQ(table.at("two\nlines"), "\xE2\x82\xAC \xF0\x9F\x98\x80");
}

TEST(StringTables, AFaultIsNamedByItsLine) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"\"a\" = \"b\";\nc = \"d\";", "line 2: expected a key"},
        {"\n\n\"a\" \"b\";", "line 3: expected \"=\""},
        {"\"a\" = \"b\"\n", "line 2: expected \";\""},
        {"\n\"a\" = \"b;\n\n", "line 2: expected a double"},
        {"\"a\" = \"\\q\";", "line 1: expected one of"},
        {"\n/* no end", "line 2: expected \"*/\""},
        {"\"a\" = \"\\U12\";", "line 1: expected four"},
        {"\"a\" = \"\\Ud83d!\";", "line 1: expected two"}};
    for (const auto& [text, message] : cases) {
        const std::string why(platform::readStringTable(text).status().why());
        EXPECT_TRUE(why.starts_with(message)) << text << why;
    }
    EXPECT_FALSE(platform::readStringTable("\"a\" = \"\xFF\";").isOk());
}

TEST(Bundle, TheFirstLanguageWithATextWins) {
    TestHost host;
    host.write("bundle/Info.plist", "<plist><dict><key>Name</key><string>Plain</string></dict></plist>");
    host.write("bundle/de.lproj/Localizable.strings", R"("Yes" = "Ja";)");
    host.write("bundle/de.lproj/InfoPlist.strings", R"("Name" = "Schlicht";)");
    host.write("bundle/English.lproj/Localizable.strings", R"("Yes" = "Yes"; "No" = "Nope";)");
    host.write("bundle/fr.lproj/Localizable.strings", "\"Yes\"\n");
    const NSBundle bundle((host.root() / "bundle").string(), {"fr", "de", "nl", "English"});
    EXPECT_EQ(bundle.localizedStringForKey("Yes"), "Ja");
    EXPECT_EQ(bundle.localizedStringForKey("No"), "Nope");
    EXPECT_EQ(bundle.localizedStringForKey("Unknown"), "Unknown");
    EXPECT_EQ(bundle.objectForInfoDictionaryKey("Name"), "Plain");
    EXPECT_EQ(bundle.objectForLocalInfoDictionaryKey("Name"), "Schlicht");
    EXPECT_EQ(bundle.objectForInfoDictionaryKey("Missing"), "");
    EXPECT_EQ(bundle.languageCode(), "de");
    host.write("bundle/de.lproj/Credits.rtf", "");
    EXPECT_EQ(bundle.pathForResource("Credits.rtf"), bundle.resourcePath() + "/de.lproj/Credits.rtf");
    EXPECT_EQ(bundle.pathForResource("lock.tiff"), bundle.resourcePath() + "/lock.tiff");
    ASSERT_EQ(host.log.size(), 1U); // only the faulty French table is logged
    EXPECT_NE(host.log.front().find("fr.lproj/Localizable.strings: line 2"), std::string::npos);
}

TEST(Bundle, TheEnvironmentNamesTheLanguagesAsGettextReadsIt) {
    using Variables = std::vector<std::pair<const char*, const char*>>;
    using Names = std::vector<std::string>;
    const Names german = {"de", "German", "English"};
    const std::vector<std::pair<Variables, Names>> cases = {
        {{}, {"English"}},
        {{{"LC_ALL", "de_AT.UTF-8@euro"}}, {"de_AT", "de", "German", "English"}},
        {{{"LC_ALL", ""}, {"LC_MESSAGES", "de"}, {"LANG", "fr"}}, german},
        {{{"LC_ALL", "C.UTF-8"}, {"LANG", "de"}, {"LANGUAGE", "de"}}, {"English"}},
        {{{"LANGUAGE", "de"}}, {"English"}},
        {{{"LANG", "POSIX"}, {"LANGUAGE", "de"}}, {"English"}},
        {{{"LANG", "en"}}, {"en", "English"}},
        {{{"LANG", "../x"}}, {"English"}},
        {{{"LANG", "nl"}, {"LANGUAGE", "de"}}, german},
        {{{"LANG", "de"}, {"LANGUAGE", ""}}, german},
        {{{"LANG", "de"}, {"LANGUAGE", "fr_CA::ja:../x"}},
         {"fr_CA", "fr", "French", "ja", "Japanese", "English"}},
        {{{"LANG", "de"}, {"LANGUAGE", "en:de"}}, {"en", "English"}}};
    for (const auto& [variables, names] : cases) {
        for (const char* each : {"LC_ALL", "LC_MESSAGES", "LANG", "LANGUAGE"}) {
            ::unsetenv(each);
        }
        for (const auto& [name, value] : variables) {
            ::setenv(name, value, 1);
        }
        EXPECT_EQ(platform::languagesFromEnvironment(), names) << ::testing::PrintToString(variables);
    }
    EXPECT_EQ(platform::languagesOfLocale(), german) << "LANGUAGE is not for scripts";
}

TEST(Notifications, ReachObserversInOrderAndNotThoseRemovedMeanwhile) {
    const TestHost host;
    auto& center = NSNotificationCenter::defaultCenter();
    std::string heard;
    const int sender = 0;
    const std::array observers{1, 2, 3};
    const auto observe = [&](int index, const void* of) {
        center.addObserver(
            &observers.at(static_cast<std::size_t>(index)),
            [&, index](const NSNotification&) {
                heard += std::to_string(observers.at(static_cast<std::size_t>(index)));
                if (index == 0) {
                    center.removeObserver(&observers[1]);
                    center.removeObserver(&observers[0]);
                }
            },
            "held", of);
    };
    observe(0, &sender);
    observe(1, nullptr);
    observe(2, &sender);
    center.postNotificationName("held", &center);
    EXPECT_EQ(heard, "2"); // only the observer for any sender
    center.postNotificationName("other", &sender);
    center.postNotificationName("held", &sender);
    center.postNotificationName("held", &sender);
    EXPECT_EQ(heard, "2133");
}

/// A shared instance whose destructor still uses the host.
struct Shared {
    explicit Shared(std::string& order, std::string name) : order_(order), name_(std::move(name)) {}

    ~Shared() {
        NSLog("%@ goes", name_);
        order_ += name_;
    }

    Shared(const Shared&) = delete;
    Shared& operator=(const Shared&) = delete;

    std::string& order_;
    std::string name_;
};

struct Younger : Shared {
    using Shared::Shared;
};

TEST(HostScope, DestroysItsInstancesTheYoungestFirst) {
    std::string order;
    const TestHost outer;
    {
        TestHost inner;
        const auto make = [&order] { return std::make_shared<Shared>(order, "older "); };
        Shared& shared = inner.host().sharedInstance<Shared>(make);
        EXPECT_EQ(&inner.host().sharedInstance<Shared>(make), &shared);
        (void)inner.host().sharedInstance<Younger>(
            [&] { return std::make_shared<Younger>(order, "younger "); });
        EXPECT_EQ(&platform::Host::current(), &inner.host());
    }
    EXPECT_EQ(order, "younger older ");
    EXPECT_TRUE(outer.log.empty());
    NSLog("%@", "outer again");
    EXPECT_EQ(outer.log, std::vector<std::string>{"outer again"});
}

TEST(HostScope, AServiceOutsideAHostFailsAtOnce) {
    EXPECT_THROW(NSLog("nobody listens"), std::logic_error);
}

TEST(SystemVersion, IsTheHostsOrAnError) {
    std::int32_t version = 7;
    {
        const TestHost host;
        EXPECT_EQ(Gestalt(gestaltSystemVersion, &version), 0);
        EXPECT_EQ(version, 0x1040);
        EXPECT_NE(Gestalt(1, &version), 0);
    }
    TestHost::Options unknown;
    unknown.systemVersion = std::nullopt;
    const TestHost host(unknown);
    EXPECT_NE(Gestalt(gestaltSystemVersion, &version), 0);
    EXPECT_EQ(version, 0x1040);
}

TEST(Fetching, ADocumentOfUpToOneMebibyteIsFetchedWhole) {
    const std::string largest(1024 * 1024, 'x');
    const LoopbackServer server(response("200 OK", largest));
    const auto fetched = platform::fetchContentsOfURL(server.address());
    EXPECT_TRUE(fetched.valueOr("") == largest);
}

TEST(Fetching, AFailureNamesTheAddressAndTheReason) {
    const TestHost host; // the reasons are translated
    const std::string tooLarge(1024 * 1024 + 1, 'x');
    const std::vector<std::pair<std::string, std::string>> cases = {
        {response("404 Not Found", "<plist/>"), "status 404"},
        {response("304 Not Modified", ""), "status 304"},
        {response("200 OK", tooLarge), "larger than 1 MiB"},
        {response("302 Found", "", "Location: file:///etc/passwd\r\n"), ""},
        {"nothing like HTTP", ""}};
    for (const auto& [answer, reason] : cases) {
        const LoopbackServer server(answer);
        const auto fetched = platform::fetchContentsOfURL(server.address());
        const std::string_view why = fetched.status().why();
        EXPECT_NE(why.find(server.address()), std::string::npos) << answer.substr(0, 40) << why;
        EXPECT_NE(why.find(reason), std::string::npos) << why;
    }
}

TEST(Fetching, OnlyWebAddressesAreFetched) {
    const TestHost host;
    for (const char* address : {"file:///etc/hostname", "ftp://127.0.0.1/", "", "not an address"}) {
        const auto fetched = platform::fetchContentsOfURL(address);
        EXPECT_FALSE(fetched.isOk()) << address;
        EXPECT_NE(fetched.status().why(), "") << address;
    }
}

} // namespace
