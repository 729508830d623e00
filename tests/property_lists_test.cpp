// Property lists: how they are read, and that everything else survives a change.

#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/NSFileManager.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include <plist/plist.h>
#include <utf8.h>

namespace {

constexpr const char* settings = R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
<key>zeta</key><date>2005-01-02T03:04:05Z</date>
<key>guest</key><false/>
<key>big</key><integer>5000000000</integer>
<key>negative</key><integer>-3</integer>
<key>ratio</key><real>2.75</real>
<key>text</key><string> -007 a &amp; b</string>
<key>yes</key><string>+0Y</string>
<key>nested</key><dict><key>inner</key><integer>1</integer><key>kept</key><data>AAEC</data></dict>
<key>list</key><array><string>x</string><true/></array>
</dict></plist>)";

TEST(PropertyLists, ValuesAreReadByTheirMeaning) {
    const auto plist = NSMutableDictionary::dictionaryWithData(settings);
    ASSERT_TRUE(plist);
    EXPECT_FALSE(plist->boolForKey("guest"));
    EXPECT_TRUE(plist->boolForKey("text"));
    EXPECT_TRUE(plist->boolForKey("yes"));
    EXPECT_FALSE(plist->boolForKey("list"));
    EXPECT_EQ(plist->intForKey("big"), 2147483647);
    EXPECT_EQ(plist->intForKey("negative"), -3);
    EXPECT_EQ(plist->intForKey("ratio"), 2);
    EXPECT_EQ(plist->intForKey("text"), -7);
    EXPECT_EQ(plist->intForKey("missing"), 0);
    EXPECT_EQ(plist->stringForKey("text"), " -007 a & b");
    EXPECT_EQ(plist->stringForKey("ratio"), "2.75");
    EXPECT_EQ(plist->stringForKey("negative"), "-3");
    EXPECT_EQ(plist->stringForKey("list"), std::nullopt);
    EXPECT_FALSE(plist->dictionaryForKey("text"));
}

TEST(PropertyLists, ChangesKeepTheOrderAndEverythingElse) {
    auto plist = NSMutableDictionary::dictionaryWithData(settings).value();
    plist.setBool(true, "guest");
    plist.setString("<new>", "big");
    plist.dictionaryForKey("nested").value().setInt(-9, "inner");
    plist.setInt(4, "added");
    const std::string xml = plist.xmlText();
    std::size_t position = 0;
    for (const char* expected :
         {"zeta", "<date>2005-01-02T03:04:05Z</date>", "guest", "<true/>", "big",
          "<string>&lt;new&gt;</string>", "-3", "2.75", "a &amp; b", "nested", "<integer>-9</integer>",
          "kept", "AAEC", "<array>", "<string>x</string>", "added", "<integer>4</integer>"}) {
        position = xml.find(expected, position);
        ASSERT_NE(position, std::string::npos) << expected << " is missing or moved in\n" << xml;
    }
    EXPECT_EQ(NSMutableDictionary::dictionaryWithData(xml).value().xmlText(), xml);
}

/// Returns a binary property list with one text.
std::string binaryList(const char* key, const char* text) {
    plist_t root = plist_new_dict();
    plist_dict_set_item(root, key, plist_new_string(text));
    char* bytes = nullptr;
    std::uint32_t size = 0;
    plist_to_bin(root, &bytes, &size);
    const std::string binary(bytes, size);
    plist_to_bin_free(bytes);
    plist_free(root);
    return binary;
}

TEST(PropertyLists, ABinaryFileIsReadAndWrittenAsXML) {
    TestHost host;
    const std::string binary = binaryList("loginGreeting", "hé");
    ASSERT_TRUE(binary.starts_with("bplist00"));
    host.write("Library/Preferences/com.apple.AppleFileServer.plist", binary);
    const auto plist = NSMutableDictionary::dictionaryWithContentsOfFile(
        "/Library/Preferences/com.apple.AppleFileServer.plist");
    ASSERT_TRUE(plist);
    const std::string copy = host.home() / "copy.plist";
    ASSERT_TRUE(plist->writeToFile(copy).isOk());
    EXPECT_TRUE(host.read("home/copy.plist").starts_with("<?xml"));
    EXPECT_EQ(NSMutableDictionary::dictionaryWithContentsOfFile(copy).value().stringForKey("loginGreeting"),
              "hé");
}

TEST(PropertyLists, CharactersThatXMLLacksAreReplacedOnlyInChangedTexts) {
    const std::string none = "\xef\xbf\xbd";
    const std::vector<std::pair<std::string, std::string>> texts{
        {"\t\n<h\xc3\xa9>\xf0\x9f\x98\x80", "\t\n<h\xc3\xa9>\xf0\x9f\x98\x80"},
        {std::string("a\0b\x01\x1f", 5), "a" + none + "b" + none + none},
        {"\xef\xbf\xbe\xef\xbf\xbf", none + none},
        {"\xff\xc3", none + none},
    };
    for (const auto& [text, kept] : texts) {
        NSMutableDictionary plist;
        plist.setString(text, "loginGreeting");
        const auto again = NSMutableDictionary::dictionaryWithData(plist.xmlText());
        EXPECT_EQ(again.value().stringForKey("loginGreeting"), kept);
    }
    const std::string kept = "<key>hidden</key>\n\t<string>caf\xe9</string>";
    auto foreign = NSMutableDictionary::dictionaryWithData(
        "<plist><dict>" + kept + "<key>shown</key><string>\xe8</string></dict></plist>");
    foreign.value().setString("\xe8", "shown");
    const std::string xml = foreign.value().xmlText();
    EXPECT_NE(xml.find(kept), std::string::npos) << xml;
    EXPECT_NE(xml.find("<string>\xe8</string>"), std::string::npos) << xml;
}

TEST(PropertyLists, EveryFormOfAFileIsRead) {
    const std::string xml = "<?xml version=\"1.0\"?>\n<plist><dict><key>k</key><string>h\xc3\xa9</string>"
                            "<key>n</key><integer>7</integer></dict></plist>";
    const auto utf16 = [](const std::string& utf8, bool bigEndian) {
        std::string bytes;
        for (const char16_t unit : utf8::utf8to16(utf8)) {
            const std::array both{static_cast<char>(unit >> 8U), static_cast<char>(unit & 0xffU)};
            bytes += {both[bigEndian ? 0 : 1], both[bigEndian ? 1 : 0]};
        }
        return bytes;
    };
    for (const std::string& bytes :
         {"\xef\xbb\xbf" + xml, utf16("\xef\xbb\xbf" + xml, true), utf16("\xef\xbb\xbf" + xml, false),
          utf16(xml, true), utf16(xml, false),
          std::string("// old\n{ k = \"h\\U00e9\"; /* x */ n = 7; a = ({}, <00 ff>, \"\\\"\",); }\n"),
          std::string("{\"k\"=\"h\\351\";n=\"7\";}")}) {
        const auto plist = NSMutableDictionary::dictionaryWithData(bytes);
        ASSERT_TRUE(plist) << bytes;
        EXPECT_EQ(plist->stringForKey("k"), "h\xc3\xa9") << bytes;
        EXPECT_EQ(plist->intForKey("n"), 7) << bytes;
    }
}

TEST(PropertyLists, OtherReadersOfTheXMLReadTheSameValues) {
    const char* dates = "<key>a</key>\n\t<date>0900-01-02T03:04:05Z</date>\n\t"
                        "<key>b</key>\n\t<date>0001-12-31T00:00:00Z</date>\n\t"
                        "<key>c</key>\n\t<string>1\t2&#13;\n3&#13;4&#1;</string>\n";
    const std::string list =
        std::string("<plist version=\"1.0\">\n<dict>\n\t") + dates + "</dict>\n</plist>\n";
    const std::string xml = NSMutableDictionary::dictionaryWithData(list).value().xmlText();
    EXPECT_TRUE(xml.ends_with(list)) << xml;
    NSMutableDictionary changed;
    changed.setString("1\r\n2", "greeting");
    EXPECT_NE(changed.xmlText().find("<string>1&#13;\n2</string>"), std::string::npos) << changed.xmlText();
}

TEST(PropertyLists, AMalformedDateReadsTheSameAfterItWasWritten) {
    const auto read = NSMutableDictionary::dictionaryWithData(
        "<plist><dict><key>a</key><date>0t01-01-02T03:04:05Z</date></dict></plist>");
    ASSERT_TRUE(read);
    const auto again = NSMutableDictionary::dictionaryWithData(read->xmlText());
    ASSERT_TRUE(again);
    EXPECT_EQ(again->values(), read->values());
    EXPECT_EQ(again->xmlText(), read->xmlText());
}

TEST(PropertyLists, AnythingButADictionaryIsRefused) {
    for (const std::string& bytes :
         {std::string(), std::string("no plist"), std::string("<plist><array/></plist>"),
          std::string("<plist><dict><key>a</key>"), std::string("bplist00"), std::string("{a=b}"),
          std::string("{a=<0>;}"), std::string("{a=\"\\Ud800\";}"), std::string("{a=(b c);}"),
          std::string("{} x"), std::string("\xfe\xff\xd8\x00", 4), std::string(1000000, '(')}) {
        EXPECT_FALSE(NSMutableDictionary::dictionaryWithData(bytes)) << bytes.substr(0, 80);
    }
}

} // namespace
