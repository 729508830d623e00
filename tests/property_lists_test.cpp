// Property lists: what is read of them, and that everything that nobody asked for survives a change.

#include "platform/foundation/NSDictionary.h"
#include "platform/foundation/NSFileManager.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>

#include <string>

#include <plist/plist.h>

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

TEST(PropertyLists, ChangesKeepTheOrderAndEverythingThatNobodyAskedFor) {
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

/// A binary property list of one text.
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
    ASSERT_TRUE(plist->writeToFile(copy));
    EXPECT_TRUE(host.read("home/copy.plist").starts_with("<?xml"));
    EXPECT_EQ(NSMutableDictionary::dictionaryWithContentsOfFile(copy).value().stringForKey("loginGreeting"),
              "hé");
}

TEST(PropertyLists, CharactersThatXMLHasNotAreReplacedInWhatIsChangedOnly) {
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

TEST(PropertyLists, WhatIsNoDictionaryIsNone) {
    for (const char* bytes :
         {"", "no plist", "<plist><array/></plist>", "<plist><dict><key>a</key>", "bplist00"}) {
        EXPECT_FALSE(NSMutableDictionary::dictionaryWithData(bytes)) << bytes;
    }
}

} // namespace
